// Capture of a long data log as the serial port delivers it: 9600 baud gives
// about 960 characters a 100-ms tick. The text is a log in the console's own
// row layout with a page break every 51 rows, closed by "END OF DATA" and the
// character 7.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "log_stream.h"
#include "reports/capture.h"

namespace {

constexpr std::size_t block = 960;

void BM_capture_data_log(benchmark::State& state) {
    const std::string text = bench::data_log(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        kyt::Capture c({false, '2', {}});
        kyt::CaptureTick t;
        for (std::size_t p = 0; p < text.size() && !t.ended; p += block)
            t = c.tick(std::string_view(text).substr(p, block));
        if (!t.ended) state.SkipWithError("the transfer did not end");
        benchmark::DoNotOptimize(t.tempfile_text.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    state.SetComplexityN(state.range(0));
}

}  // namespace

BENCHMARK(BM_capture_data_log)->Arg(2 << 20)->Arg(4 << 20)->MinTime(1.0)->Unit(benchmark::kMillisecond)->Complexity();

BENCHMARK_MAIN();
