// The data log graph with the largest log the reader takes (32,767 records,
// 91 hours): from File, Open to the first full draw (the target is under
// 150 ms), and one move of the visible stretch redrawn (under 30 ms). Every
// point goes into the chart; the view only moves its x range.
#include <benchmark/benchmark.h>

#include "form_bench_main.h"

#include <QApplication>
#include <QTemporaryDir>

#include <string>

#include "app/dialogs/file_dialogs.h"
#include "common/chart.h"
#include "common/forms.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "counted_boxes.h"
#include "graph/frmGraph.h"
#include "graph/log_reader.h"
#include "support/memory_settings_store.h"
#include "synthetic_log.h"
#include "common/file_text.h"

namespace {

// The Open dialog answers with the benchmark's log.
class FixedDialogs final : public kyt::FileDialogs {
public:
    explicit FixedDialogs(std::string name) : name_(std::move(name)) {}
    std::string show_open(const kyt::CommonDialog&) override { return name_; }
    std::string show_save(const kyt::CommonDialog&) override { return name_; }

private:
    std::string name_;
};

struct Graph {
    QTemporaryDir work;
    bench::CountedBoxes* boxes;
    frmGraph* form;

    Graph() {
        const std::string log = work.filePath("long.log").toStdString();
        kyt::write_text_file(log, bench::synthetic_log());
        kyt::Services& s = kyt::services();
        s.dialogs = std::make_unique<FixedDialogs>(log);
        s.settings = std::make_unique<kyt::MemorySettingsStore>();
        auto counted = std::make_unique<bench::CountedBoxes>();
        boxes = counted.get();
        s.boxes = std::move(counted);
        form = kyt::forms::get<frmGraph>();
        form->resize(1000, 700);
        form->show();
        QCoreApplication::processEvents();
    }
    ~Graph() {
        kyt::forms::unload<frmGraph>();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    kyt::Chart& chart() { return *form->findChild<kyt::Chart*>("DGraph"); }
};

void BM_open_to_first_draw(benchmark::State& state) {
    Graph g;
    for (auto _ : state) g.form->mnuOpen_Click();  // read, load every point, full draw
    if (g.boxes->count || kyt::graph_series().graph_last_index != bench::log_rows - 1)
        state.SkipWithError("the log was not graphed whole");
    state.counters["points"] = static_cast<double>(g.chart().point_count(1));
}

void BM_move_stretch_and_draw(benchmark::State& state) {
    Graph g;
    g.form->mnuOpen_Click();
    g.form->cmdScaleLeft_Click();  // a 20-minute span
    bool later = true;
    for (auto _ : state) {
        // Along the log and back, each move drawn in full.
        if (later) g.form->cmdTimeLeft_Click();
        else g.form->cmdTimeRight_Click();
        g.chart().draw_now();
        const kyt::AxisRange x = g.chart().range(kyt::ChartAxis::x);
        if (x.max > 5000) later = false;
        if (x.min <= 0) later = true;
    }
    if (g.boxes->count) state.SkipWithError("a message box came");
}

}  // namespace

BENCHMARK(BM_open_to_first_draw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_move_stretch_and_draw)->Unit(benchmark::kMillisecond);

KYT_FORM_BENCHMARK_MAIN()
