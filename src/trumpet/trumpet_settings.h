#pragma once
// The rules of the trumpet settings dialog as functions of the log's length
// L (graph_time of the last record, minutes), and the texts of the trumpet
// summary and of its printed page. The dialog itself only fills its lists
// from these and remembers what was confirmed.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "graph/log_reader.h"
#include "trumpet/compute.h"

namespace kyt {

// The last entry of the calculation length list.
inline constexpr std::string_view all_entry = "All";

// What the Default button selects, and the log length above which it acts.
inline constexpr int default_length_entry = 0;
inline constexpr int default_start_entry = 2;
inline constexpr double default_button_minimum = 120;

// Refuses a log with less than 60 minutes of data before the trumpet opens.
std::optional<BoxMessage> check_trumpet_data(const LogSeries& series);

// The start list and what selecting in it gives.
struct StartChoice {
    std::vector<std::string> start_entries;  // StartTime
    int start_selected = 0;
    bool start_enabled = true;
    std::int16_t trumpet_start_time = 0;
    std::int16_t calculation_length = 60;
    std::int16_t trumpet_end_time = 60;
};

// The dialog as its load leaves it.
struct TrumpSetLoad {
    StartChoice choice;
    std::vector<std::string> length_entries;  // DataInt: 60, 120 ... and "All"
    int length_selected = 0;
    double interpolation_interval = 60;
    std::int16_t trumpet_default_marker = 30;
};

// A log longer than 60 and at most 120 minutes has one or two start entries
// where the load's rule asks for entry 1 or 2; it selects the nearest that
// exists (the last), as choosing a length from the list does.
TrumpSetLoad trumpset_load(double log_minutes);

// Selecting an entry of the length list: a number of minutes, or "All".
// The start list is rebuilt for that length and its default selected; with
// "All" it holds "0" alone and is disabled. An entry that is neither a
// number nor "All" reads as 0 minutes.
StartChoice choose_length(double log_minutes, std::string_view entry);

// Whether the Default button acts on a log of this length.
bool default_applies(double log_minutes);

// The texts of the summary beside the trumpet graph.
struct TrumpetSummaryTexts {
    // Rows 1 to 5 of the table as "0.00", into lblMaxErrorP(i) and so on.
    std::array<std::string, 5> max_error_percent, max_error_rate, min_error_percent, min_error_rate;
    std::string set_rate;         // lblSetRate
    std::string avg_rate;         // lblAvgRate
    std::string avg_error;        // lblAvgError
    std::string analysis_period;  // lblAnalysisPeriod
};

TrumpetSummaryTexts trumpet_summary_texts(const TrumpetResult& result, double base_rate,
                                          std::int16_t trumpet_start_time, std::int16_t trumpet_end_time);

// The form's title: "TRUMPET GRAPH - [" + file name in lower case + " ]".
std::string trumpet_title(const std::string& graph_file_name);

// The figures and the table of the printed trumpet page.
struct TrumpetPageInput {
    const TrumpetResult* result = nullptr;
    double base_rate = 0;
    std::int16_t calculation_length = 0;
    std::int16_t trumpet_start_time = 0;
    std::int16_t trumpet_end_time = 0;
    double interpolation_interval = 60;
    std::string graph_file_name;
};

struct TrumpetPageTexts {
    std::vector<std::string> figures;  // base rate to interpolation interval, a line each
    std::vector<std::string> warning;  // the two lines told when the points are too few; else empty
    std::string file_line;             // "File name:  " and the name in lower case
    std::vector<std::string> table;    // heading, periods, units, maximum and minimum lines
};

TrumpetPageTexts trumpet_page_texts(const TrumpetPageInput& in);

}  // namespace kyt
