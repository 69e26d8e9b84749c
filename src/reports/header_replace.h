#pragma once
// Writing the test header into a report that the analyser delivered, over
// the underlined blanks behind its labels, so that the report reads as if the
// analyser had known the device under test.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/report_rec.h"
#include "common/box_message.h"

namespace kyt {

// Writes `value`, trimmed, over `text` from the 1-based position `at`, in
// place: the text keeps its length, and nothing is written past its end.
// At most as many characters as the untrimmed value has are written.
void write_over(std::string& text, std::size_t at, std::string_view value);

// The header fields of `rec` written over the text behind their labels
// (first occurrence of each), in this order: manufacturer, serial number,
// department, set rate, model, control number, location, volume. A missing
// label counts as position 0, so its value lands at the label's offset from
// the start of the text. Then the comment: behind "Comment:", or on a comment
// line of its own after the title line when the label is missing. For a
// downloaded summary (mode "1") with a set rate, a flow error line follows
// the average rate.
std::string replace_header(std::string header_text, const ReportRec& rec, char download_mode);

// The same, keeping `anchor` (a 0-based place in the text) on the same
// character of the text while lines are inserted before it.
std::string replace_header(std::string header_text, const ReportRec& rec, char download_mode,
                           std::size_t& anchor);

// The text arithmetic that prepares a report in the editor for a second file
// to be joined to it: the part from 8 characters before "Start" through
// "Time:", two line ends, and then the 8 characters before "Set" (the text
// from "Set Rate" on is cut away). `header_wanted` is the 16-bit flag, which
// holds all bits set when true: only the value 1 would write the rate,
// volume and comment here.
std::string report_for_header(std::string_view edit_text, const ReportRec& rec, std::int16_t header_wanted);

// The lines of a file's text, each followed by CR LF.
std::string join_lines(std::string_view file_text);

struct ReportForHeader {
    std::string report_text;            // what the editor shows afterwards
    std::optional<BoxMessage> message;  // "Opening file cancelled." without a file name
};

// report_for_header, then the named file's lines joined to it. The file is
// read here; one that cannot be read adds nothing.
ReportForHeader open_report_for_header(std::string_view edit_text, const ReportRec& rec,
                                       std::int16_t header_wanted, const std::string& file_name);

}  // namespace kyt
