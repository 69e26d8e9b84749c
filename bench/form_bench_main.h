#pragma once
// The main of a benchmark that drives forms: an application on the
// offscreen platform, then Google Benchmark.

#include <QApplication>

#include <benchmark/benchmark.h>

#define KYT_FORM_BENCHMARK_MAIN()                          \
    int main(int argc, char** argv) {                      \
        qputenv("QT_QPA_PLATFORM", "offscreen");           \
        QApplication app(argc, argv);                      \
        benchmark::Initialize(&argc, argv);                \
        benchmark::RunSpecifiedBenchmarks();               \
        benchmark::Shutdown();                             \
        return 0;                                          \
    }
