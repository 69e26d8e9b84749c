#include "graph/graph_view.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "common/numbers.h"
#include "common/text.h"

namespace kyt {

namespace {

// The x position of point i (counted from 1).
double x_of(const std::vector<double>& time, int i) { return time[static_cast<std::size_t>(i - 1)]; }

}  // namespace

int opening_last_point(const std::vector<double>& time, int anchor_index) {
    const int n = static_cast<int>(time.size()) - 1;
    if (n < 0) return 0;
    const double end = time[static_cast<std::size_t>(anchor_index)] + 10;
    int i = 1;
    while (i < n && x_of(time, i) < end) ++i;
    return i - 1;
}

void TimeWindow::settle(const std::vector<double>& time) {
    const int n = static_cast<int>(time.size()) - 1;
    // The first point at or past the right edge, and one more when there
    // is one, so that the curve runs to the edge.
    int i = 0;
    while (i <= n) {
        if (x_max <= time[static_cast<std::size_t>(i)]) {
            ++i;
            break;
        }
        ++i;
    }
    if (i < n) ++i;
    last_point = i;
    later_enabled = n >= 0 && time[static_cast<std::size_t>(n)] > x_max;
    earlier_enabled = x_min - span >= 0;
}

void TimeWindow::later(const std::vector<double>& time) {
    x_min += span;
    x_max += span;
    settle(time);
}

void TimeWindow::earlier(const std::vector<double>& time) {
    x_min = std::max(0.0, x_min - span);
    x_max = x_min + span;
    settle(time);
}

void TimeWindow::longer(const std::vector<double>& time) {
    if (scale_index < 6) ++scale_index;
    span = time_spans[scale_index - 1];
    shorter_enabled = true;
    if (scale_index == 6) longer_enabled = false;
    x_max = x_min + span;
    settle(time);
}

void TimeWindow::shorter(const std::vector<double>& time) {
    if (scale_index > 1) --scale_index;
    span = time_spans[scale_index - 1];
    longer_enabled = true;
    if (scale_index == 1) shorter_enabled = false;
    x_max = x_min + span;
    settle(time);
}

FlowScale next_flow_scale(int& state, double base_rate, double flow_scale_max) {
    const double b = to_int16(base_rate).value_or(0);
    FlowScale s;
    switch (state) {
        case 0:
            s = {0, flow_scale_max, "Average Flow, Centered, Fitted"};
            break;
        case 1:
            s = {0, std::floor(b * 1.201), "Base Rate, +/-20%"};
            break;
        case 2:
            s = {0, std::floor(b * 1.501), "Base Rate, +/-50%"};
            break;
        default:
            s = {0, std::floor(b * 2.001), "Base Rate, +/-100%"};
            break;
    }
    s.min = b - (s.max - b);
    state = (state + 1) % 4;
    return s;
}

namespace {

// The average of the last record but one, as its trimmed text cut to five
// characters.
std::string last_average_text(const LogSeries& s) {
    const std::size_t n = static_cast<std::size_t>(std::max<int>(0, s.graph_last_index));
    const double avg = n >= 1 && n - 1 < s.graph_avg_flow.size() ? s.graph_avg_flow[n - 1] : 0;
    return trim(general_number(avg)).substr(0, 5);
}

}  // namespace

std::vector<std::string> graph_print_lines(const LogSeries& s, const std::string& file_name) {
    const std::size_t n = static_cast<std::size_t>(std::max<int>(0, s.graph_last_index));
    const double total = n < s.graph_time.size() ? s.graph_time[n] : 0;
    return {
        "Average flow rate:  " + last_average_text(s) + " ml/hr  " + "Total time:  " + general_number(total) + " mins",
        "Maximum flow rate:  " + format_picture(s.max_flow, "00.00") + " ml/hr " + "Number of Points:  " +
            std::to_string(s.graph_last_index + 1),
        "Minimum flow rate:  " + format_picture(s.min_flow, "00.00") + " ml/hr ",
        "File name:  " + lower(file_name),
    };
}

std::string graph_image_suffix(std::string_view file_name) {
    const std::size_t dot = file_name.find('.');
    const std::size_t from = dot == std::string_view::npos ? 0 : dot + 1;
    std::string suffix(file_name.substr(std::min(from, file_name.size()), 3));
    std::transform(suffix.begin(), suffix.end(), suffix.begin(), [](unsigned char c) { return std::toupper(c); });
    return suffix;
}

GraphInfo graph_info(const LogSeries& s, const std::string& file_name) {
    const std::size_t n = static_cast<std::size_t>(std::max<int>(0, s.graph_last_index));
    GraphInfo g;
    g.caption = "DATA LOG GRAPH - [ " + lower(file_name) + " ]";
    g.points = "No Pts:  " + std::to_string(s.graph_last_index + 1);
    g.total_time = "Total Time:  " + general_number(s.graph_time.empty() ? 0 : std::floor(s.graph_time[n])) + " mins";
    g.max_flow = "Max:  " + general_number(s.max_flow);
    g.min_flow = "Min:  " + general_number(s.min_flow);
    g.avg_flow = "Avg:  " + last_average_text(s);
    g.set_rate = " " + general_number(s.base_rate) + " (ml/hr)";
    return g;
}

}  // namespace kyt
