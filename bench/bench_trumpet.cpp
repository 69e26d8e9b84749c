// The trumpet on a log of 32,767 rows (91 hours), at interval 30 over the
// whole log and over the settings dialog's default hour, and at interval 60.
#include <benchmark/benchmark.h>

#include "graph/log_reader.h"
#include "synthetic_log.h"
#include "trumpet/compute.h"
#include "trumpet/trumpet_settings.h"

namespace {

const kyt::LogSeries& series() {
    static const kyt::LogSeries s = kyt::read_log(bench::synthetic_log()).series;
    return s;
}

kyt::TrumpetSettings whole_log(double interval) {
    const kyt::LogSeries& s = series();
    const kyt::StartChoice all = kyt::choose_length(s.graph_time[s.graph_last_index], kyt::all_entry);
    return {interval, all.trumpet_start_time, all.trumpet_end_time};
}

void run(benchmark::State& state, const kyt::TrumpetSettings& settings) {
    const kyt::LogSeries& s = series();
    if (s.graph_last_index != bench::log_rows - 1) {
        state.SkipWithError("the synthetic log was not read whole");
        return;
    }
    for (auto _ : state) {
        const kyt::TrumpetResult r = kyt::graph_trumpet(s, settings);
        benchmark::DoNotOptimize(r.trumpet_table.data());
    }
    state.counters["points"] = kyt::graph_trumpet(s, settings).trumpet_point_count;
}

void BM_TrumpetInterval30WholeLog(benchmark::State& state) { run(state, whole_log(30)); }
BENCHMARK(BM_TrumpetInterval30WholeLog)->Unit(benchmark::kMicrosecond);

void BM_TrumpetInterval60WholeLog(benchmark::State& state) { run(state, whole_log(60)); }
BENCHMARK(BM_TrumpetInterval60WholeLog)->Unit(benchmark::kMicrosecond);

void BM_TrumpetInterval30DefaultHour(benchmark::State& state) { run(state, {30, 60, 120}); }
BENCHMARK(BM_TrumpetInterval30DefaultHour)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
