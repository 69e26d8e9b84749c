#include "acquisition/frmOTGraph.h"

#include <cmath>

#include "acquisition/frmDownload.h"
#include "acquisition/logformat.h"
#include "common/forms.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/serial_line.h"
#include "ui_frmOTGraph.h"

using namespace kyt;

frmOTGraph::frmOTGraph() : ui(new Ui::frmOTGraph), axis_(run_choice().occlusion_unit) {
    ui->setupUi(this);
    wire(ui->cmdStop, ui->cmdCancel);
    initial_setup();
    // The poll interval of an occlusion test is one second, whatever was
    // chosen; the test time counts from load.
    GetDataTimer.start(1000);
    DurationTimer.start(1000);
}

frmOTGraph::~frmOTGraph() { delete ui; }

void frmOTGraph::initial_setup() {
    const SharedState& s = shared();
    reset_buffers();
    setup_OTGraph();
    ot_time_left = std::lround(leading_number(run_choice().occlusion_minutes) * 60);
    if (!s.dirs.ot_log_file.empty()) setWindowTitle("OCCLUSION TEST  -  " + qs_file(s.dirs.ot_log_file));
}

void frmOTGraph::setup_OTGraph() {
    Chart& g = *ui->OTGraph;
    g.set_title("Real Time Occlusion Test");
    g.set_axis_title(ChartAxis::left, axis_.title());
    g.set_axis_title(ChartAxis::x, "Data Points");
    g.set_set_count(1);
    g.set_legend_visible(false);
    g.set_scrolling(25);
    const AxisChange start = axis_.initial();
    g.set_range(ChartAxis::left, *start.min, *start.max);
    g.draw_now();
}

void frmOTGraph::take_reply(const std::string& reply) {
    const Parsed<OTData> parsed = process_ot_data(reply);
    if (!parsed.ok()) return;  // a reply that cannot be held is dropped whole
    reading = parsed.data;
    display_realtime_data();
    graph_realtime_data();
    if (run_choice().save_to_file) write_current_data();
}

void frmOTGraph::display_realtime_data() {
    ui->lblElapsedTime->setText(qs(format_picture(reading.minutes, "00") + ":" + format_picture(reading.seconds, "00")));
    ui->lblPSI->setText(qs(general_number(reading.psi)));
    ui->lblmmHg->setText(qs(general_number(reading.mmhg)));
    // The kPa label comes from mmHg; the graph's kPa from PSI.
    ui->lblkPa->setText(qs(general_number(reading.mmhg / occlusion_kpa_factor)));
}

void frmOTGraph::graph_realtime_data() {
    Chart& g = *ui->OTGraph;
    g.scroll_in(1, static_cast<float>(axis_.value(reading)));
    const AxisChange c = axis_.sample(reading);
    if (c.min || c.max) {
        const AxisRange now = g.range(ChartAxis::left);
        g.set_range(ChartAxis::left, c.min.value_or(now.min), c.max.value_or(now.max));
    }
    g.repaint_soon();
}

void frmOTGraph::write_current_data() {
    RunLogs& logs = run_logs();
    // The page counting runs even when no log is kept.
    const std::string row = logs.ot.row(OcclusionRow{reading.minutes, reading.seconds, reading.psi, reading.mmhg});
    if (!shared().dirs.ot_log_file.empty()) logs.ot_file.write(row);
}

void frmOTGraph::DurationTimer_Timer() {
    if (run_choice().occlusion) {
        --ot_time_left;
        ui->lblTimeLeft->setText(qs(kyt::seconds_to_hhmmss(ot_time_left)));
    } else {
        ui->lblTimeLeft->setText("N/A");
    }
    next_phase_when_up(ot_time_left);
}

const std::string& frmOTGraph::summary_file() const { return shared().dirs.ot_sum_file; }
const BoxMessage& frmOTGraph::summary_write_error() const { return ot_summary_write_error; }
