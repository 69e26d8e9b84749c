// Capture of a long data log as the serial port delivers it: 9600 baud gives
// about 960 characters a 100-ms tick. The text is a log in the console's own
// row layout with a page break every 51 rows, closed by "END OF DATA" and the
// character 7.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "reports/capture.h"

namespace {

constexpr std::size_t block = 960;

std::string data_log(std::size_t size) {
    std::string text = "\r\n\r\n                                 MAROVANT 4500-K\r\n\r\n         SINGLE RATE TEST\r\n\r\n"
                       "         Elapsed   Flow  Avg Flow  Volume  B.Pres\r\n"
                       "           Time    (ml/h)  (ml/h)    (ml)  (mmHg)\r\n";
    text.reserve(size + 256);
    for (int row = 0; text.size() < size; ++row) {
        if (row > 0 && row % 51 == 0) {
            char mark[96];
            std::snprintf(mark, sizeof mark, "\f\r\n\r\n%67sp. %02d\r\n\r\n", "", row / 51 + 1);
            text += mark;
        }
        char line[96];
        std::snprintf(line, sizeof line, "         %02d:%02d:%02d  %5.2f   %5.2f    %5.3f     %d\r\n", row / 3600 % 100,
                      row / 60 % 60, row % 60, 95 + row % 10 * 0.5, 99.5 + row % 7 * 0.1, (row % 3600) * 0.0278,
                      row % 20);
        text += line;
    }
    return text + "\r\n         END OF DATA\a";
}

void BM_capture_data_log(benchmark::State& state) {
    const std::string text = data_log(static_cast<std::size_t>(state.range(0)));
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
