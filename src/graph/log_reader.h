#pragma once
// Reads a single-rate data log into the log series, in two passes over the
// text: the counting pass decides whether the log can be graphed and sizes the
// series, the reading pass fills them and derives the figures.
//
// Nothing here shows a box: where the console tells the user something, the
// result carries the message with its title and style, and the form shows it.
// A refused log leaves the caller's series alone: the form replaces its
// program-wide LogSeries only with the series of an accepted result.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/box_message.h"
#include "common/dialog_flags.h"
#include "graph/log_series.h"

namespace kyt {


// The open dialog of the graph screen. After it closes the form hands the
// folder to remember_save_dir, which keeps it as setting "savedir" of section
// "Startup".
struct GraphFileDialog {
    static constexpr std::string_view title = "GRAPH FILE";
    static constexpr std::string_view default_extension = "LOG";
    static constexpr std::string_view filter =
        "Log Files (*.log)| *.log"
        "|Data files (*.dat) | *.dat"
        "|All files (*.*) | *.*";
    static constexpr int flags = dlg_open_flags;
};

struct LogReadResult {
    // The series and figures. Complete only when accepted(); otherwise they
    // hold what the passes got to (graph_last_index is the counted value).
    LogSeries series;

    // The message to tell; empty exactly when the log was accepted.
    std::optional<BoxMessage> message;

    // False when the counting pass met a refused test kind or failed.
    bool graph_file_ok = false;

    // Test kinds met on the way. single_rate_test is sticky: the caller
    // passes in the value it keeps and takes this one back.
    bool single_rate_test = false;
    bool occlusion_test = false;
    bool pca_test = false;
    bool dual_rate_test = false;

    bool accepted() const { return !message.has_value(); }
};

// The log the graph shows, program-wide: the graph view, its print-out and
// the trumpet read it; an accepted log replaces it whole.
LogSeries& graph_series();

// Reads a log held in memory (bytes, lines ended by CR LF).
// single_rate_test: whether a single-rate heading was met in an earlier log
// read by the same graph form; it counts as met here too.
LogReadResult read_log(std::string_view text, bool single_rate_test = false);

// A log of the most records the graph takes (32,767) with its page heads is
// some 3 MB; a larger file is no log, and is refused before it is read.
inline constexpr std::uintmax_t log_size_limit = 16u << 20;

// Reads the log in the named file; a file that cannot be read, or is larger
// than log_size_limit, is refused as the counting pass refuses a log of too
// many records.
LogReadResult read_log_file(const std::string& path, bool single_rate_test = false);

namespace detail {

// The elapsed time of a record's first field ("hh:mm:ss" and a blank) in
// minutes, truncated to two decimals through the decimal text of the value.
double elapsed_minutes(std::string_view field);

// The literal rule behind elapsed_minutes: the value's decimal text at 15
// significant digits, cut two digits behind its ".", read back.
double minutes_through_decimal_text(double minutes);

// Numeric value of a field, as the leading-number reading gives it.
double field_number(std::string_view field);

}  // namespace detail

}  // namespace kyt
