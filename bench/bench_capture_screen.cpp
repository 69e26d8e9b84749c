// The capture screen's tick, as the 100-ms timer runs it on a download: one
// tick on a 4 KB block (the target is well under 1 ms), and a whole 2 MB data
// log taken through the tick handler at 9600 baud (960 characters a tick),
// with the longest report text the capture held in hand.
#include <benchmark/benchmark.h>

#include "form_bench_main.h"

#include <QApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <string>

#include "common/forms.h"
#include "log_stream.h"
#include "common/message_boxes.h"
#include "counted_boxes.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "reports/frmReports.h"
#include "support/fake_serial_line.h"
#include "support/stepping_clock.h"

namespace {


struct Screen {
    QTemporaryDir work;
    kyt::FakeSerialLine* line;
    bench::CountedBoxes* boxes;
    frmReports* form;

    Screen() {
        kyt::Services& s = kyt::services();
        auto serial = std::make_unique<kyt::FakeSerialLine>();
        auto counted = std::make_unique<bench::CountedBoxes>();
        line = serial.get();
        boxes = counted.get();
        s.serial = std::move(serial);
        s.boxes = std::move(counted);
        s.clock = std::make_unique<kyt::SteppingClock>();
        kyt::shared().dirs.save_dir = work.path().toStdString();
        line->set_port_open(true);
        form = new frmReports;
        form->GetDataTimer.stop();  // the benchmark drives the ticks
        form->prepare_capture(kyt::CaptureSetup{false, '2', {}});
    }
    ~Screen() { delete form; }
};

void BM_tick_on_4k_block(benchmark::State& state) {
    Screen screen;
    // A log much longer than the run needs, so that every tick carries text.
    const std::string text = bench::data_log(64u << 20);
    std::size_t pos = 0;
    for (auto _ : state) {
        screen.line->feed(std::string_view(text).substr(pos, 4096));
        pos += 4096;
        screen.form->GetDataTimer_Timer();
        if (pos + 4096 > text.size()) state.SkipWithError("the log ran out");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * 4096));
    state.counters["held_text"] = static_cast<double>(screen.form->held_text_length());
}

void BM_whole_log_through_the_screen(benchmark::State& state) {
    const std::string text = bench::data_log(static_cast<std::size_t>(state.range(0)));
    std::size_t longest = 0;
    for (auto _ : state) {
        Screen screen;
        for (std::size_t p = 0; p < text.size(); p += 960) {
            screen.line->feed(std::string_view(text).substr(p, 960));
            screen.form->GetDataTimer_Timer();
            longest = std::max(longest, screen.form->held_text_length());
        }
        for (int i = 0; i < 3; ++i) screen.form->GetDataTimer_Timer();
        if (screen.form->GetDataTimer.isActive() || screen.boxes->count) state.SkipWithError("the capture did not end cleanly");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    state.counters["longest_held_text"] = static_cast<double>(longest);
}

}  // namespace

BENCHMARK(BM_tick_on_4k_block)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_whole_log_through_the_screen)->Arg(2 << 20)->Unit(benchmark::kMillisecond)->MinTime(2.0);

KYT_FORM_BENCHMARK_MAIN()
