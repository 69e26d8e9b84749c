#pragma once
// The trumpet computation: how far the delivered flow strays from the base
// rate when it is averaged over observation periods of 2, 5, 11, 19 and 31
// minutes. Everything comes from the cumulative volume, resampled at a fixed
// interval; the mean flow of a period is the volume difference over it.
//
// A run takes the log series (with its base_rate) and the settings of the
// analysis and rebuilds everything; it changes neither the series nor the
// base rate.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "graph/log_series.h"

namespace kyt {

// Rows 0 to 4 are the periods 2, 5, 11, 19 and 31 minutes; the columns are
// named by TrumpetColumn. Single precision, as the table is kept.
using TrumpetTable = std::array<std::array<float, 5>, 5>;

enum TrumpetColumn : std::size_t {
    observation_minutes = 0,  // length of the period
    max_error_percent = 1,    // (highest mean flow - base rate) / base rate * 100
    min_error_percent = 2,    // (lowest mean flow - base rate) / base rate * 100
    max_error_rate = 3,       // highest mean flow - base rate, ml/h
    min_error_rate = 4,       // lowest mean flow - base rate, ml/h
};

inline constexpr std::array<int, 5> observation_periods = {2, 5, 11, 19, 31};

struct TrumpetSettings {
    double interpolation_interval = 60;   // seconds between resampled points, 30 or 60
    std::int16_t trumpet_start_time = 0;  // minutes
    std::int16_t trumpet_end_time = 0;    // start plus the calculation length, minutes
};

struct TrumpetResult {
    TrumpetTable trumpet_table{};
    double trumpet_avg_rate = 0;   // ml/h
    double trumpet_avg_error = 0;  // percent
    bool insufficient_points = false;
    std::int16_t trumpet_point_count = 0;

    // Empty when the run completed; otherwise why it was abandoned, and the
    // fields above are not to be used.
    std::string error;
    bool ok() const { return error.empty(); }
};

// A straight line through (x0, y0) and (x1, y1), anchored on the second
// point; y1 when the two share their x.
double interpolate(double x, double y0, double y1, double x0, double x1);

// One run and its working data, kept between runs so that a rescale reuses
// the allocations. The working data stay readable after a run.
class TrumpetComputation {
public:
    TrumpetResult run(const LogSeries& series, const TrumpetSettings& settings);

    std::vector<double> corrected_time;   // exact elapsed minutes of each record
    std::vector<double> trumpet_volume;   // elements 0 to trumpet_point_count - 1 filled
    std::array<double, 6> period_max_rate{};  // ml/h, elements 0 to 4 in use
    std::array<double, 6> period_min_rate{};
    int first_record = 0, last_record = 0;    // the records that bound the analysis

private:
    // The three steps of a run, in this order.
    bool getInterpolatedData(double interval);
    void calcTrumpetError(double interval);
    void generateTrumpetGraph();
    bool fail(std::string why);

    const LogSeries* series_ = nullptr;
    TrumpetSettings settings_;
    TrumpetResult result_;
};

// One run with fresh working data.
TrumpetResult graph_trumpet(const LogSeries& series, const TrumpetSettings& settings);

}  // namespace kyt
