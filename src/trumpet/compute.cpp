#include "trumpet/compute.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/numbers.h"

namespace kyt {

namespace {

// trumpet_point_count is a signed 16-bit count.
constexpr int max_point_count = std::numeric_limits<std::int16_t>::max();

// Log records between the first and the last of the analysis below which the
// curve is drawn but flagged as resting on too few points.
constexpr int enough_records_at_30_seconds = 120;
constexpr int enough_records_at_60_seconds = 60;

bool fits_single(double v) { return std::fabs(v) <= std::numeric_limits<float>::max(); }

}  // namespace

double interpolate(double x, double y0, double y1, double x0, double x1) {
    if (x1 - x0 == 0) return y1;
    return (x - x1) * ((y1 - y0) / (x1 - x0)) + y1;
}

bool TrumpetComputation::fail(std::string why) {
    result_.error = std::move(why) + "; trumpet computation cancelled";
    return false;
}

TrumpetResult TrumpetComputation::run(const LogSeries& series, const TrumpetSettings& settings) {
    series_ = &series;
    settings_ = settings;
    result_ = TrumpetResult{};
    const int n = series.graph_last_index;
    const auto size = static_cast<std::size_t>(std::max(n, 0)) + 1;
    if (n < 1 || series.graph_time.size() != size || series.graph_avg_flow.size() != size ||
        series.graph_volume.size() != size)
        fail("The log holds too few records");
    else if (std::isnan(settings.interpolation_interval))
        fail("The interpolation interval is not a number");
    else if (getInterpolatedData(settings.interpolation_interval)) {
        calcTrumpetError(settings.interpolation_interval);
        generateTrumpetGraph();
    }
    series_ = nullptr;
    return result_;
}

bool TrumpetComputation::getInterpolatedData(double interval) {
    const LogSeries& s = *series_;
    const int n = s.graph_last_index;
    const double step_minutes = interval / 60;
    const int start = settings_.trumpet_start_time;
    const int end = settings_.trumpet_end_time;

    // The exact elapsed minutes of each record, from its volume and running
    // average; a record whose average is 0 (the first, as a rule) keeps its
    // logged time. The analysis works on these times from here on.
    corrected_time.resize(static_cast<std::size_t>(n) + 1);
    for (int i = 0; i <= n; ++i) {
        const double avg = s.graph_avg_flow[i];
        corrected_time[i] = avg == 0 ? s.graph_time[i] : s.graph_volume[i] / avg * 60;
        if (!std::isfinite(corrected_time[i])) return fail("A corrected time is out of range");
    }
    const std::vector<double>& ct = corrected_time;
    const std::vector<double>& volume = s.graph_volume;

    // The resampled series is sized from the last corrected time; a point
    // beyond that size ends the run, as does a count past 16 bits.
    const double upper = step_minutes != 0 ? round_half_even(ct[n] / step_minutes + 2) : n;
    if (!(upper >= 0)) return fail("The log's last corrected time leaves no room for resampled points");
    const auto capacity = static_cast<std::size_t>(std::min(upper, double(max_point_count))) + 1;
    trumpet_volume.assign(capacity, 0.0);

    // The records that bound the analysis. The search for the last goes on
    // from where the search for the first stopped.
    int k = 1;
    if (start > 0) {
        while (ct[k] < start && k < n) ++k;
        first_record = k;
    } else {
        first_record = 0;
    }
    if (end < ct[n]) {
        while (ct[k] < end && k < n) ++k;
        last_record = k < n - 1 ? k + 1 : k;
    } else {
        last_record = n;
    }

    // Resample: point m lies at start + m * step. The end test compares the
    // offset m * step with the absolute end minute; the test on the last
    // record is the one that normally stops the walk.
    k = first_record;
    int m = 0;
    for (;;) {
        if (m * step_minutes > end) break;
        if (k > last_record) break;
        const double t = m * step_minutes + start;
        // The bracket of records k - 1 and k; before record 1, records 0 and 1.
        const int a = k > 0 ? k - 1 : 0;
        const int b = k > 0 ? k : 1;
        double v;
        if (m == 0 || t < ct[k]) v = interpolate(t, volume[a], volume[b], ct[a], ct[b]);
        else if (t == ct[k]) v = volume[k];
        else {
            ++k;
            continue;
        }
        if (static_cast<std::size_t>(m) >= capacity)
            return fail("More resampled points than the log's last corrected time allows");
        if (m == max_point_count) return fail("More resampled points than a count holds");
        trumpet_volume[m] = v;
        ++m;
    }
    result_.trumpet_point_count = static_cast<std::int16_t>(m);

    // Too few log records (not resampled points) between first and last.
    const int span = last_record - first_record;
    result_.insufficient_points = (interval == 30 && span < enough_records_at_30_seconds) ||
                                  (interval == 60 && span < enough_records_at_60_seconds);
    return true;
}

void TrumpetComputation::calcTrumpetError(double interval) {
    const LogSeries& s = *series_;
    // The extremes start at the log's final average, not at a first mean
    // flow: the maximum curve never lies below it, the minimum never above.
    const double final_average = s.graph_avg_flow[s.graph_last_index];
    std::fill(period_max_rate.begin(), period_max_rate.begin() + 5, final_average);
    std::fill(period_min_rate.begin(), period_min_rate.begin() + 5, final_average);

    // Resampled points per minute: 2 at 30 seconds, 1 at 60.
    double points_per_minute = interval == 0 ? 0 : round_half_even(1 / (interval / 60));
    if (points_per_minute < 1) points_per_minute = 1;

    const double count = result_.trumpet_point_count;
    TrumpetTable& table = result_.trumpet_table;
    for (std::size_t p = 0; p < observation_periods.size(); ++p) {
        const int w = observation_periods[p];
        const double span = w * points_per_minute;
        double& highest = period_max_rate[p];
        double& lowest = period_min_rate[p];
        for (std::size_t j = 0; static_cast<double>(j) + span < count; ++j) {
            const double rate = (trumpet_volume[j + static_cast<std::size_t>(span)] - trumpet_volume[j]) * 60 / w;
            if (rate > highest) highest = rate;
            else if (rate < lowest) lowest = rate;
        }
        table[p][observation_minutes] = static_cast<float>(w);
    }

    const double base = s.base_rate;
    for (std::size_t p = 0; p < table.size(); ++p) {
        std::array<float, 5>& row = table[p];
        if (base == 0) {
            row[max_error_percent] = row[min_error_percent] = row[max_error_rate] = row[min_error_rate] = 0;
            continue;
        }
        const double fields[] = {(period_max_rate[p] - base) / base * 100, (period_min_rate[p] - base) / base * 100,
                                 period_max_rate[p] - base, period_min_rate[p] - base};
        for (std::size_t f = 0; f < 4; ++f) {
            if (!fits_single(fields[f])) {
                fail("A trumpet value is out of range");
                return;
            }
            row[max_error_percent + f] = static_cast<float>(fields[f]);
        }
    }
}

void TrumpetComputation::generateTrumpetGraph() {
    if (!result_.ok()) return;
    const LogSeries& s = *series_;
    // The overall rate is the average of the last record but one, while the
    // extremes above start from the last record.
    result_.trumpet_avg_rate = s.graph_avg_flow[s.graph_last_index - 1];
    const double base = s.base_rate;
    result_.trumpet_avg_error = base != 0 ? (result_.trumpet_avg_rate - base) / base * 100 : 0;
    if (!std::isfinite(result_.trumpet_avg_error)) fail("A trumpet value is out of range");
}

TrumpetResult graph_trumpet(const LogSeries& series, const TrumpetSettings& settings) {
    return TrumpetComputation().run(series, settings);
}

}  // namespace kyt
