#include "trumpet/trumpet_settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"

namespace kyt {

namespace {

constexpr int start_step = 30;    // minutes between start entries
constexpr int length_step = 60;   // minutes between length entries
constexpr int shortest_log = 60;  // minutes of data the trumpet needs

// A log cannot reach these lengths (its hours have two digits); the bound
// keeps every sum of a start and a length within 16 bits.
constexpr double longest_log = 16000;

double bounded(double log_minutes) {
    if (std::isnan(log_minutes)) return 0;
    return std::clamp(log_minutes, -longest_log, longest_log);
}

std::int16_t minutes16(double v) { return static_cast<std::int16_t>(v); }

std::string whole(int v) { return std::to_string(v); }

// A rate line of the summary and of the page: its label, the rate, the unit.
std::string rate_text(std::string_view label, double rate) {
    return std::string(label) + general_number(rate) + " ml/hr";
}

// A single-precision cell is formatted as the decimal it stands for, not as
// the digits of its widening to double.
double as_decimal(float v) {
    const std::string text = shortest_text(v);
    double d = v;
    std::from_chars(text.data(), text.data() + text.size(), d);
    return d;
}

}  // namespace

std::optional<BoxMessage> check_trumpet_data(const LogSeries& series) {
    const int n = series.graph_last_index;
    if (n < 0 || static_cast<std::size_t>(n) >= series.graph_time.size() || series.graph_time[n] < shortest_log)
        return BoxMessage{"Insufficient data for Trumpet Graph", "Data Error", box_exclamation};
    return std::nullopt;
}

TrumpSetLoad trumpset_load(double log_minutes) {
    const double L = bounded(log_minutes);
    TrumpSetLoad load;
    StartChoice& c = load.choice;

    int k = 0;
    for (; k * start_step + shortest_log < L; ++k) {
        c.trumpet_start_time = minutes16(k * start_step);
        c.start_entries.push_back(whole(k * start_step));
    }
    // The start selected at load: minute 0 on a log of at most 60 minutes,
    // else minute 60 (entry 2) or minute 30 (entry 1). With one or two
    // entries, which logs of 61 to 120 minutes give, the wanted entry is
    // missing and the last one stands in for it.
    if (k == 0) {
        c.start_entries.push_back("0");
        c.start_selected = 0;
    } else {
        const int wanted = k >= 2 ? 2 : 1;
        c.start_selected = std::min(wanted, static_cast<int>(c.start_entries.size()) - 1);
    }
    c.trumpet_start_time = minutes16(c.start_selected * start_step);

    for (int j = 1; j * length_step < L; ++j) load.length_entries.push_back(whole(j * length_step));
    load.length_entries.emplace_back(all_entry);
    c.calculation_length = L > shortest_log ? minutes16(shortest_log) : minutes16(std::floor(L));
    c.trumpet_end_time = minutes16(c.trumpet_start_time + c.calculation_length);
    return load;
}

StartChoice choose_length(double log_minutes, std::string_view entry) {
    const double L = bounded(log_minutes);
    StartChoice c;
    if (entry == all_entry) {
        // The whole log: its length floored, and one minute more when the
        // rest is above half a minute, rounded halves to even, so that only
        // odd floors go up (75.6 gives 76, 76.6 gives 76).
        double length = std::floor(L);
        if (L - length > 0.5) length = round_half_even(length + 0.5);
        c.calculation_length = minutes16(length);
        c.start_entries = {"0"};
        c.start_selected = 0;
        c.start_enabled = false;
        c.trumpet_start_time = 0;
    } else {
        c.calculation_length = minutes16(bounded(round_half_even(leading_number(entry))));
        c.start_entries = {"0"};
        int k = 1;
        for (; k * start_step + c.calculation_length < L; ++k) c.start_entries.push_back(whole(k * start_step));
        // With k the first start that did not fit: entry 2 (minute 60) when
        // there is one, else the last.
        c.start_selected = k > 2 ? 2 : k - 1;
        c.trumpet_start_time = minutes16(c.start_selected * start_step);
    }
    c.trumpet_end_time = minutes16(c.trumpet_start_time + c.calculation_length);
    return c;
}

bool default_applies(double log_minutes) { return log_minutes > default_button_minimum; }

TrumpetSummaryTexts trumpet_summary_texts(const TrumpetResult& result, double base_rate,
                                          std::int16_t trumpet_start_time, std::int16_t trumpet_end_time) {
    TrumpetSummaryTexts t;
    for (std::size_t i = 0; i < result.trumpet_table.size(); ++i) {
        const auto& row = result.trumpet_table[i];
        t.max_error_percent[i] = format_picture(as_decimal(row[max_error_percent]), "0.00");
        t.max_error_rate[i] = format_picture(as_decimal(row[max_error_rate]), "0.00");
        t.min_error_percent[i] = format_picture(as_decimal(row[min_error_percent]), "0.00");
        t.min_error_rate[i] = format_picture(as_decimal(row[min_error_rate]), "0.00");
    }
    t.set_rate = rate_text("Base Rate:  ", base_rate);
    t.avg_rate = rate_text("Avg Rate:  ", result.trumpet_avg_rate);
    t.avg_error = "% Error:  " + format_picture(result.trumpet_avg_error, "0.000");
    // Below minute 60 the end itself stands as the length.
    const int length = trumpet_end_time >= 60 ? trumpet_end_time - trumpet_start_time : trumpet_end_time;
    t.analysis_period = "Analysis Period:  " + whole(length) + " min  -  From " + whole(trumpet_start_time) +
                        " to " + whole(trumpet_end_time) + " min";
    return t;
}

std::string trumpet_title(const std::string& graph_file_name) {
    return "TRUMPET GRAPH - [" + lower(graph_file_name) + " ]";
}

namespace {

// A cell of the printed table in the picture "00.00", after the blanks that
// keep the columns in line with a minus sign. The sign is read back from the
// formatted text, so a tiny negative that formats to zero counts as zero.
std::string page_cell(float value, int blanks_when_not_negative) {
    const std::string text = format_picture(as_decimal(value), "00.00");
    const bool negative = leading_number(text) < 0;
    return std::string(static_cast<std::size_t>(blanks_when_not_negative - (negative ? 1 : 0)), ' ') + text;
}

std::string period_heading() {
    std::string line(12, ' ');
    for (std::size_t i = 0; i < observation_periods.size(); ++i)
        line += (i == 0 ? "" : std::string(17, ' ')) + whole(observation_periods[i]);
    return line;
}

}  // namespace

TrumpetPageTexts trumpet_page_texts(const TrumpetPageInput& in) {
    const TrumpetResult& r = *in.result;
    TrumpetPageTexts t;
    const std::string start = whole(in.trumpet_start_time), end = whole(in.trumpet_end_time);
    t.figures = {rate_text("Base Rate:  ", in.base_rate),
                 rate_text("Average Rate:  ", r.trumpet_avg_rate),
                 "Average % Error:  " + format_picture(r.trumpet_avg_error, "0.000") + " %",
                 in.trumpet_end_time >= 60
                     ? "Analysis Period:  " + whole(in.calculation_length) + " min -  From " + start + " to " + end +
                           " min"
                     : "Analysis Period:  " + end + " min  -  From " + start + " to " + end + " min",
                 "Data Interpolation Interval: " + general_number(in.interpolation_interval) + "sec"};
    if (r.insufficient_points)
        t.warning = {"Warning: The data used to generate this graph had an insufficient ",
                     "number of data points to be an accurate representation"};
    t.file_line = "File name:  " + lower(in.graph_file_name);

    std::string units, max_line, min_line;
    for (const auto& row : r.trumpet_table) {
        units += std::string(7, ' ') + "%" + std::string(6, ' ') + "ml/hr";
        max_line += page_cell(row[max_error_percent], 5) + page_cell(row[max_error_rate], 4);
        min_line += page_cell(row[min_error_percent], 5) + page_cell(row[min_error_rate], 4);
    }
    t.table = {"Observation Period:", period_heading(), units, max_line, min_line};
    return t;
}

}  // namespace kyt
