#pragma once
// The fixed-column text of the data logs that the live tests write, and the
// finishing of a summary that the analyser delivers. Every function returns
// the exact bytes of one piece, lines ended by CR LF, as soon as the piece is
// formed: the caller writes and flushes it at once, so a test that is killed
// keeps every row written before.

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

#include "common/numbers.h"
#include "common/report_rec.h"
#include "common/text.h"
#include "common/box_message.h"

namespace kyt {

enum class LogKind { single_rate, occlusion };

// What the writers tell when a log or a summary cannot be written.
inline const BoxMessage rt_log_cancelled{"Logging real-time data to file CANCELLED", "CANCEL", box_exclamation};
inline const BoxMessage ot_log_cancelled{"Logging occlusion data to file CANCELLED", "CANCEL", box_exclamation};
inline const BoxMessage rt_log_bad_name{"Bad file name for real-time data", "INVALID FILE NAME", box_exclamation};
inline const BoxMessage ot_log_write_error{"Error writing occlusion data", "FILE ACCESS ERROR", box_exclamation};
inline const BoxMessage rt_summary_write_error{"Error writing real-time summary", "FILE ACCESS ERROR",
                                                   box_exclamation};
inline const BoxMessage ot_summary_write_error{"Error writing occlusion summary", "FILE ACCESS ERROR",
                                                   box_exclamation};
// Told by the name test that stands beside the head writers, for a summary.
inline const BoxMessage summary_bad_name{"Bad file name for real-time summary data", "INVALID FILE NAME",
                                             box_exclamation};

// One poll of a single-rate test, as the analyser reported it.
struct SingleRateRow {
    int hours = 0, minutes = 0, seconds = 0;
    double flow = 0, avg_flow = 0, volume = 0, pressure = 0;
};

// One poll of an occlusion test. Hours are not logged.
struct OcclusionRow {
    int minutes = 0, seconds = 0;
    double psi = 0, mmhg = 0;
};

// A flow, average flow or volume by its size: "0.000" below 10 (negatives
// too), "00.00" below 100, "000.0" below 1000, "0000" from there on.
std::string format_by_size(double v);

// The 31 lines at the head of a log, page 1 ("p. 01" at columns 68 to 72),
// dated `now`.
std::string log_head(LogKind kind, const ReportRec& rec, char channel, const CivilTime& now);

// The six lines that open a further page: form feed, page mark and the two
// column heads of the continuation pages.
std::string continuation_head(LogKind kind, int page);

std::string single_rate_row(const SingleRateRow& r);
std::string occlusion_row(const OcclusionRow& r);

// The end mark and the closing block with pump type and technician. The
// block is left out when no header was entered.
std::string log_close(const ReportRec& rec, bool header_entered);

// A data log being written: the head, then each row with the continuation
// head that falls due before it, then the close. The line counter starts at
// 27 although the head has 31 lines, and restarts at 6 on a new page; a page
// is full above 56 lines for a single-rate log and above 55 for an occlusion
// log. Page breaks rest on these numbers, and so does the spreadsheet
// conversion that skips a form feed and the five lines behind it.
class DataLog {
public:
    explicit DataLog(LogKind kind) : kind_(kind) {}

    LogKind kind() const { return kind_; }
    int page_number() const { return page_number_; }
    int line_count() const { return line_count_; }

    // Starts the counting over at page 1.
    std::string head(const ReportRec& rec, char channel, const CivilTime& now);
    std::string close(const ReportRec& rec, bool header_entered) const { return log_close(rec, header_entered); }

protected:
    // Counts one row; gives the continuation head when the row opens a page.
    std::string count_row();

private:
    LogKind kind_;
    int page_number_ = 1;
    int line_count_ = 27;
};

class SingleRateLog : public DataLog {
public:
    SingleRateLog() : DataLog(LogKind::single_rate) {}
    std::string row(const SingleRateRow& r) { return count_row() + single_rate_row(r); }
};

class OcclusionLog : public DataLog {
public:
    OcclusionLog() : DataLog(LogKind::occlusion) {}
    // The counting runs even when no log file is kept; the caller then
    // drops the text.
    std::string row(const OcclusionRow& r) { return count_row() + occlusion_row(r); }
};

// A log file on disk: opened replacing any earlier content, and every piece
// flushed to the system as soon as it is written.
class LogFile {
public:
    bool open(const std::string& path);
    bool write(std::string_view piece);
    void close() { out_.close(); }
    bool is_open() const { return out_.is_open(); }

private:
    std::ofstream out_;
};

// The two logs a run may write, one after the other: each keeps its page
// counting and its own file from its head until it is closed. The download
// dialog writes the heads, the test screens the rows and the close.
struct RunLogs {
    SingleRateLog rt;
    LogFile rt_file;
    OcclusionLog ot;
    LogFile ot_file;
    // Set once an occlusion head is written; cleared when a failed head's
    // new name is given up.
    bool ot_log_open = false;
};

// The one pair of the program.
RunLogs& run_logs();

// Opens `path` replacing any content and writes the head of `log` into it.
// False, with the file closed, when the file cannot be opened or written.
bool start_log(DataLog& log, LogFile& file, const std::string& path, const ReportRec& rec, char channel,
               const CivilTime& now);

// The bytes of a summary file from the text collected up to its character 7:
// cut at "Tech"; with a header entered, the pump type and technician lines
// added and the header fields written into the text; one more line end.
std::string summary_file_text(std::string collected, const ReportRec& rec, bool header_entered,
                              char download_mode);

}  // namespace kyt
