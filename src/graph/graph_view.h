#pragma once
// The rules of the data log graph view, without a widget: which stretch of
// the log is drawn, how the arrows move and resize the visible time span,
// the flow scale cycle and the figures shown beside the graph. Points count
// from 1 as the chart counts them; point i stands at x = graph_time(i - 1).

#include <string>
#include <string_view>
#include <vector>

#include "graph/log_series.h"

namespace kyt {

// The lengths the visible span steps through, in minutes.
inline constexpr int time_spans[] = {10, 20, 30, 40, 50, 60};

// The last point drawn in the opening view: the points that lie within ten
// minutes of the anchor's time (at least none, at most the last but one).
int opening_last_point(const std::vector<double>& time, int anchor_index = 0);

// The visible stretch and the state of the four arrows.
struct TimeWindow {
    double x_min = 0, x_max = 10;
    int span = 10;          // minutes
    int scale_index = 1;    // position of span in time_spans, 1 to 6
    int last_point = 0;     // last point drawn; drawing always starts at point 1
    bool later_enabled = true;      // cmdTimeLeft ">"
    bool earlier_enabled = false;   // cmdTimeRight "<"
    bool longer_enabled = true;     // cmdScaleLeft ">"
    bool shorter_enabled = false;   // cmdScaleRight "<"

    bool operator==(const TimeWindow&) const = default;

    // The arrows: the stretch moved a span later or earlier (never before
    // 0), and the span one step longer or shorter. Each ends by finding the
    // last point to draw and the arrows that can move on.
    void later(const std::vector<double>& time);
    void earlier(const std::vector<double>& time);
    void longer(const std::vector<double>& time);
    void shorter(const std::vector<double>& time);

private:
    void settle(const std::vector<double>& time);
};

// The flow axis through the scale cycle: the fitted average flow, then the
// base rate with 20, 50 and 100 per cent either side. Each step's maximum
// is mirrored about the base rate for the minimum.
struct FlowScale {
    double min = 0, max = 0;
    std::string title;
    bool operator==(const FlowScale&) const = default;
};
// `state` is the step to take (0 to 3) and moves on to the next.
FlowScale next_flow_scale(int& state, double base_rate, double flow_scale_max);

// The figures beside the graph, as their labels show them.
struct GraphInfo {
    std::string caption, points, total_time, max_flow, min_flow, avg_flow, set_rate;
    bool operator==(const GraphInfo&) const = default;
};
GraphInfo graph_info(const LogSeries& s, const std::string& file_name);

// The four lines of figures on the printed graph page.
std::vector<std::string> graph_print_lines(const LogSeries& s, const std::string& file_name);

// The suffix of an image name as the graph's Save as Image reads it: the
// three characters after the first dot, in upper case (the first three of
// the name when it has no dot). "BMP", "WMF", "JPG" and "GIF" are taken.
std::string graph_image_suffix(std::string_view file_name);

}  // namespace kyt
