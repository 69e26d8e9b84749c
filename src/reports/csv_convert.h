#pragma once
// Conversion of a single-rate data log into a comma-separated file that a
// spreadsheet opens, written beside the log with ".CSV" in place of ".log".

#include <string>
#include <string_view>

#include "common/box_message.h"

namespace kyt {

// The common dialog that picks the log to convert.
inline constexpr std::string_view csv_dialog_title = "CONVERT TO CSV";
inline constexpr std::string_view csv_dialog_extension = "csv";
// The filter names logs on purpose: what is picked is the source.
inline constexpr std::string_view csv_dialog_filter = "Spreadsheet Files (*.log)| *.log|All files (*.*) | *.*";

// Told when the dialog brings no name back.
inline const BoxMessage csv_cancelled{"Converting Log file to Spreadsheet format cancelled", "CANCEL",
                                          box_exclamation};

// One data line: each ":" becomes ",", and each run of blanks gives one comma
// in place of its first blank and keeps the others.
std::string time_colons_to_commas(std::string_view line);

struct CsvText {
    bool complete = false;  // "END OF DATA" was met
    std::string csv;        // what goes into the target, complete or not
};

// The conversion of a log's text: the head up to the second column heading
// less its last 110 characters, the two fixed heading rows, the data rows
// (page breaks and the five lines behind each left out), and after
// "END OF DATA" a blank and every remaining line as it is. Every write ends
// with a line end of its own.
CsvText convert_log_text(std::string_view log_text);

enum class CsvOutcome { converted, bad_extension, cannot_open, no_end_mark };

BoxMessage csv_message(CsvOutcome outcome);

struct CsvResult {
    CsvOutcome outcome = CsvOutcome::cannot_open;
    std::string target;  // the ".CSV" file, once the name was accepted
    BoxMessage message() const { return csv_message(outcome); }
};

// The whole conversion from the log file's name: its trimmed name must end
// in ".log", exactly so (".LOG" is refused), and the file may hold at most
// report_size_limit bytes; the target is replaced. A log that ends without
// "END OF DATA" leaves what was converted in the target; a text without the
// column headings leaves the target alone.
CsvResult convert_log_to_csv(const std::string& file_name);

}  // namespace kyt
