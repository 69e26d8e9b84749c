#pragma once
// Capture of a long text from the analyser (a summary, a data log or any
// text), fed one read of the serial input per timer tick. Each tick says what
// the report form has to do: enable its menus, show a line, tell an error
// reply, and at the end of the transfer write the tempfile text it returns.
// The text is cleaned as it comes: control characters masked, damaged line
// ends repaired, lines joined again across ticks. A long log does not grow
// the edit text: beyond 30000 characters its middle goes to overflow pages,
// which the tempfile text puts back in their place.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/report_rec.h"
#include "link/protocol.h"
#include "common/box_message.h"

namespace kyt {

// What the text box shows while waiting, and at the end of a transfer.
inline constexpr std::string_view waiting_for_input_text = "                             Waiting for Serial Input";
inline constexpr std::string_view end_of_download_text = "                                 End Of Download";

// The file in the save folder that takes each finished transfer, and what
// is told when it cannot be written and no other name is chosen.
inline constexpr std::string_view tempfile_name = "tempfile.dat";
inline std::string tempfile_path(const std::string& save_dir) { return save_dir + "/" + std::string(tempfile_name); }
inline const BoxMessage tempfile_bad_name{"Bad report file name", "INVALID FILE NAME", box_exclamation};
inline const BoxMessage tempfile_save_cancelled{"Saving report cancelled.", "SAVE CANCEL", box_exclamation};

// The edit text is kept about this short during a transfer.
inline constexpr std::size_t capture_text_limit = 30000;

// Masks characters 6 and below with a blank, all but the last character of
// the text, and repairs the damaged line ends CR LF LF, CR CR blank and
// CR LF CR by writing CR LF CR LF over them, as far as the text reaches. The
// length of the text never changes.
void process_buffer(std::string& text);

struct CaptureSetup {
    bool save_file = false;   // a file was chosen: the header goes into the text
    char download_mode = '4';  // "1" summary, "2" data log, "4" any text
    ReportRec rec;             // the header, for the closing lines and the fields
};

struct CaptureTick {
    bool has_data = false;             // text in hand: print, edit entries (and save with a file) may be enabled
    std::optional<std::string> shown;  // the line the text box shows after this tick
    std::vector<ReplyError> errors;    // what process_errors tells, in order
    bool stopped = false;              // "not connected": the capture is abandoned, no file
    bool ended = false;                // the transfer is complete; tempfile_text is its file
    std::string tempfile_text;
};

class Capture {
public:
    explicit Capture(CaptureSetup setup) : setup_(std::move(setup)) {}

    // One tick with what the serial input delivered since the last one.
    // After the end of the transfer, or once abandoned, a tick does nothing.
    CaptureTick tick(std::string_view input);

    // Masks and repairs comm_buffer like process_buffer, and holds its last
    // 2 characters back in carry_text for the next tick (all of it when it
    // is shorter), unless it holds character 7. An error reply that comes
    // before any line of the transfer is taken at once rather than held.
    void Process_tempbuffer(std::string& comm_buffer);

    const std::string& report_text() const { return report_text_; }
    const std::string& carry_text() const { return carry_text_; }
    const std::string& partial_line() const { return partial_line_; }
    bool receiving() const { return receiving_; }
    bool head_frozen() const { return head_frozen_; }
    std::size_t head_length() const { return head_text_.size(); }
    std::size_t page_count() const { return overflow_pages_.size(); }
    const std::vector<std::string>& overflow_pages() const { return overflow_pages_; }

private:
    bool lone_error_reply(std::string_view text) const;
    void append_line(std::string_view line);
    void keep_text_short();
    std::string end_of_transfer();

    CaptureSetup setup_;
    std::string report_text_;
    bool first_buffer_ = true;
    std::string carry_text_;
    std::string partial_line_;
    bool receiving_ = false;
    bool done_ = false;

    std::string head_text_;
    bool head_frozen_ = false;
    bool frozen_at_elapsed_ = false;  // else for its length
    std::vector<std::string> overflow_pages_;

    // How far report_text_ has been searched for "Elapsed" before the head
    // froze, and for an end mark since; and whether one was found.
    std::size_t elapsed_searched_ = 0;
    std::size_t end_mark_searched_ = 0;
    bool end_near_ = false;
};

}  // namespace kyt
