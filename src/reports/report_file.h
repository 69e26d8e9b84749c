#pragma once
// Reports as files: what the editor accepts as a report, the text it shows
// of a file, the file a report is saved under, and the lines and page breaks
// of its print. Files are plain 8-bit text, every line ended by CR LF.

#include <string>
#include <string_view>
#include <vector>

#include "common/box_message.h"
#include "common/shared_state.h"

namespace kyt {

inline const BoxMessage open_cancelled{"CancelOpen", "CANCEL", box_exclamation};
inline const BoxMessage not_a_report{"Invalid file!  The file is not a LOG or a SUMMARY file.", "ERROR",
                                     box_critical};
inline const BoxMessage bad_open_name{"Bad file name entered", "BAD FILE NAME", box_exclamation};
inline const BoxMessage report_save_cancelled{"Saving file cancelled.", "CANCEL", box_exclamation};
inline const BoxMessage print_question{"Are you sure want to print?", "PRINT", box_ask};
inline const BoxMessage nothing_to_print{"Inappropriate data! Printing stopped", "ERROR", box_critical};
inline const BoxMessage printer_fault{
    "The printer is not functioning properly, use Windows online help or manual for further assitance", "ERROR",
    box_critical};

// The editor takes texts up to this size; a report of a whole day's test is
// a few hundred kilobytes.
inline constexpr std::size_t report_size_limit = 16u << 20;

// A report names itself: a text that holds "LOG" or "SUMMARY" anywhere (in a
// longer word too) is one.
bool is_report_text(std::string_view text);

// A file's text as the editor holds it: its lines, each followed by CR LF,
// whatever line ends the file had.
std::string report_text_of_file(std::string_view file_bytes);

// The file that a report of the given download mode is saved under, trimmed:
// "1" the summary, "2" the data log, "4" any text, "5" the report opened for
// editing; empty for any other mode.
std::string report_file_name(const Folders& files, char download_mode);

// One step of a report's print: a line, or the start of a new page.
struct PrintStep {
    enum Kind { line, new_page } kind = line;
    std::string text;

    bool operator==(const PrintStep&) const = default;
};

// The print of a report file's text under the name to print. From the first
// line that holds "SUMMARY" on, a line with a form feed opens a new page
// with its own page mark and the file's name; a line holding "p." (other
// than "p. 01") opens a new page, and every such line carries "Filename:  "
// and the name written over it from its 9th character, at most 60
// characters and never past its end.
std::vector<PrintStep> report_print_steps(std::string_view file_text, std::string_view name_to_print);

}  // namespace kyt
