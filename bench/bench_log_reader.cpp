// Reading a log of 32,767 rows (both passes and every figure) against merely
// reading the same file and splitting it into lines. The ratio of the two,
// measured in the same run, is printed at the end.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <unistd.h>

#include "common/text.h"
#include "graph/log_reader.h"
#include "synthetic_log.h"

namespace {

std::string log_path;

std::string read_file(const std::string& path) {
    std::string text;
    if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
        std::error_code no_size;
        const auto size = std::filesystem::file_size(path, no_size);
        if (!no_size) text.reserve(static_cast<std::size_t>(size));
        char buffer[1 << 16];
        std::size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, f)) > 0) text.append(buffer, got);
        std::fclose(f);
    }
    return text;
}

void BM_ReadFileAndSplitLines(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<std::string> lines = kyt::split_lines(read_file(log_path));
        benchmark::DoNotOptimize(lines.data());
    }
}
BENCHMARK(BM_ReadFileAndSplitLines)->Unit(benchmark::kMillisecond);

void BM_ReadLogFile(benchmark::State& state) {
    for (auto _ : state) {
        const kyt::LogReadResult r = kyt::read_log_file(log_path);
        if (!r.accepted() || r.series.graph_last_index != bench::log_rows - 1) {
            state.SkipWithError("the synthetic log was not read whole");
            break;
        }
        benchmark::DoNotOptimize(r.series.graph_time.data());
    }
}
BENCHMARK(BM_ReadLogFile)->Unit(benchmark::kMillisecond);

// Keeps the time of each benchmark for the ratio: the median when the run
// repeats, else the single measurement.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> times;
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) continue;
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            if (median || (run.run_type == Run::RT_Iteration && !times.count(run.run_name.function_name)))
                times[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    log_path = (std::filesystem::temp_directory_path() / ("kyt-bench-" + std::to_string(getpid()) + ".log")).string();
    {
        const std::string log = bench::synthetic_log();
        std::FILE* f = std::fopen(log_path.c_str(), "wb");
        if (!f || std::fwrite(log.data(), 1, log.size(), f) != log.size()) return 1;
        std::fclose(f);
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::filesystem::remove(log_path);
    const auto split = reporter.times.find("BM_ReadFileAndSplitLines");
    const auto read = reporter.times.find("BM_ReadLogFile");
    if (split != reporter.times.end() && read != reporter.times.end())
        std::printf("reading the log takes %.2f times reading and splitting the file\n", read->second / split->second);
    benchmark::Shutdown();
    return 0;
}
