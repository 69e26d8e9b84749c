#pragma once
// The series of a single-rate data log and the figures derived from them: what
// the graph view, its print-out and the trumpet analysis start from. The forms
// keep one program-wide instance; an accepted log replaces it whole.

#include <cstdint>
#include <string_view>
#include <vector>

namespace kyt {

// Caption of the default flow scale, the one that flow_scale_min and
// flow_scale_max below describe.
inline constexpr std::string_view default_flow_scale_caption = "Average Flow, Centered, Fitted";

struct LogSeries {
    // Index 0 to graph_last_index, all five sized together.
    std::vector<double> graph_time;              // minutes, truncated to two decimals
    std::vector<double> graph_flow;              // ml/h
    std::vector<double> graph_avg_flow;          // ml/h, the log's running average
    std::vector<double> graph_volume;            // ml, cumulative
    std::vector<std::int16_t> graph_pressure;    // mmHg
    std::int16_t graph_last_index = -1;          // number of data records minus 1

    // True once the series hold a log.
    bool graph_valid = false;

    double max_flow = 0;          // highest graph_flow
    double min_flow = 0;          // lowest graph_flow
    double final_avg_flow = 0;    // graph_avg_flow(graph_last_index)
    std::int16_t avg_flow_whole = 0;  // final_avg_flow rounded, halves to even
    double max_volume = 0;        // highest graph_volume, floored
    double flow_scale_min = 0;    // the default flow scale
    double flow_scale_max = 0;
    double base_rate = 0;         // ml/h; the trumpet's base rate dialog overwrites it
};

}  // namespace kyt
