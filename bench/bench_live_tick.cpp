// The single-rate test screen's poll tick, as its timer runs it: the poll
// sent, the reply read, parsed, shown in the labels, pushed into the graph
// and written as a log row with its flush. One tick (the target is well
// under 1 ms), and 10,000 ticks in a row with the process's resident memory
// and the tick time of the first and the last thousand.
#include <benchmark/benchmark.h>

#include "form_bench_main.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <string>

#include "acquisition/frmDownload.h"
#include "acquisition/frmRTGraph.h"
#include "acquisition/logformat.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "counted_boxes.h"
#include "common/numbers.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/serial_line.h"
#include "support/stepping_clock.h"

namespace {

// A line whose analyser answers every poll at once, and keeps nothing.
class AnsweringLine final : public kyt::SerialLine {
public:
    void set_port_number(int) override {}
    int port_number() const override { return 1; }
    void set_settings(std::string_view) override {}
    void set_port_open(bool) override {}
    bool port_open() const override { return true; }
    void set_rts_enable(bool) override {}
    int in_buffer_count() override { return static_cast<int>(pending_.size()); }
    void clear_input() override { pending_.clear(); }
    void clear_output() override {}
    void set_rthreshold(int) override {}
    void set_input_len(int) override {}
    void output(std::string_view) override {
        ++polls_;
        const double flow = 100 + (polls_ % 7) * 0.9;
        pending_ = "B, " + std::to_string(polls_ / 3600 % 100) + ", " + std::to_string(polls_ / 60 % 60) + ", " +
                   std::to_string(polls_ % 60) + ", " + kyt::general_number(flow) + ", 100.02, " +
                   kyt::general_number(polls_ * 0.028) + ", 12.5\r";
    }
    std::string input() override { return std::exchange(pending_, {}); }
    std::string device_name(int) const override { return "bench"; }

private:
    long polls_ = 0;
    std::string pending_;
};


long resident_kb() {
    long pages = 0, resident = 0;
    if (std::FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(f);
    }
    return resident * 4;
}

struct Screen {
    QTemporaryDir work;
    bench::CountedBoxes* boxes;
    frmRTGraph* form;

    Screen() {
        kyt::Services& s = kyt::services();
        s.serial = std::make_unique<AnsweringLine>();
        auto counted = std::make_unique<bench::CountedBoxes>();
        boxes = counted.get();
        s.boxes = std::move(counted);
        s.clock = std::make_unique<kyt::SteppingClock>();
        kyt::SharedState& shared = kyt::shared();
        shared.dirs.rt_log_file = work.filePath("bench.log").toStdString();
        kyt::RunLogs& logs = kyt::run_logs();
        kyt::start_log(logs.rt, logs.rt_file, shared.dirs.rt_log_file, {}, 'B', kyt::local_now());
        kyt::forms::get<frmDownload>();  // Save to File is ticked: every row is logged
        form = kyt::forms::get<frmRTGraph>();
        form->show();
        form->GetDataTimer.stop();  // the benchmark drives the ticks
        form->DurationTimer.stop();
    }
    ~Screen() {
        kyt::forms::unload<frmRTGraph>();
        kyt::forms::unload<frmDownload>();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        kyt::run_logs().rt_file.close();
    }
    // One tick, and the events it leaves (the throttled redraw among them).
    void tick() {
        form->GetDataTimer_Timer();
        QCoreApplication::processEvents();
    }
};

void BM_poll_tick(benchmark::State& state) {
    Screen screen;
    for (auto _ : state) screen.tick();
    if (screen.boxes->count) state.SkipWithError("a message box came");
}

void BM_ten_thousand_ticks(benchmark::State& state) {
    for (auto _ : state) {
        Screen screen;
        for (int i = 0; i < 1000; ++i) screen.tick();  // settle
        const long before = resident_kb();
        QElapsedTimer t;
        t.start();
        for (int i = 0; i < 1000; ++i) screen.tick();
        const double first = static_cast<double>(t.nsecsElapsed()) / 1000 / 1000;
        for (int i = 0; i < 8000; ++i) screen.tick();
        t.restart();
        for (int i = 0; i < 1000; ++i) screen.tick();
        const double last = static_cast<double>(t.nsecsElapsed()) / 1000 / 1000;
        state.counters["first_1000_tick_us"] = first;
        state.counters["last_1000_tick_us"] = last;
        state.counters["resident_growth_kb"] = static_cast<double>(resident_kb() - before);
        if (screen.boxes->count) state.SkipWithError("a message box came");
    }
}

}  // namespace

BENCHMARK(BM_poll_tick)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ten_thousand_ticks)->Unit(benchmark::kMillisecond)->Iterations(1);

KYT_FORM_BENCHMARK_MAIN()
