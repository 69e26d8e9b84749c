#pragma once
// The three ways the console asks for the name of a report or log file, all
// through the one common dialog. The caller sets the dialog's title first.

#include <string>

namespace kyt {

struct CommonDialog;

// The two filter orders and their default extensions.
inline constexpr const char* kLogFirstFilter =
    "Log Files (*.log)| *.log|Summary files (*.sum) | *.sum|Data files (*.dat) | *.dat|All files (*.*) | *.*";
inline constexpr const char* kSummaryFirstFilter =
    "Summary Files (*.sum)| *.sum|Log files (*.log) | *.log|Data files (*.dat) | *.dat|All files (*.*) | *.*";

// Leaves the chosen name in file_name, empty when the operator gave up. A
// report text that holds "LOG" offers logs first.
void show_open_dialog();

// The chosen name, already created empty; empty when the operator gave up or
// the name could not be used. The filter order follows log_file_wanted.
std::string show_save_dialog();

// The log to convert to a spreadsheet file, through the Open dialog with the
// spreadsheet filter; its folder becomes the save folder. Empty when the
// operator gave up.
std::string show_csv_save_dialog();

// The Open dialog as the caller has set it up, with an empty name: the name
// chosen, whose folder becomes the save folder, or empty when the operator
// gave up (a dialog that cannot come up is told).
std::string open_and_remember(CommonDialog& d);

// The save folder becomes the folder of `name`, and its setting follows it.
void remember_save_folder(const std::string& name);

// Creates the file empty (an existing one loses its content) to prove that
// the name can be used; the name, or an empty text after telling why not.
std::string check_file_name(const std::string& name);

}  // namespace kyt
