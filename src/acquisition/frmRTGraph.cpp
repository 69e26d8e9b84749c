#include "acquisition/frmRTGraph.h"

#include <cmath>

#include "acquisition/frmDownload.h"
#include "acquisition/logformat.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/serial_line.h"
#include "ui_frmRTGraph.h"

using namespace kyt;

frmRTGraph::frmRTGraph() : ui(new Ui::frmRTGraph) {
    ui->setupUi(this);
    wire(ui->cmdStop, ui->cmdCancel);
    initial_setup();
}

frmRTGraph::~frmRTGraph() { delete ui; }

void frmRTGraph::initial_setup() {
    SharedState& s = shared();
    setWindowTitle("REAL TIME DATA  -  Channel " + QString(QChar(s.port.channel)));
    s.dirs.file_name = s.dirs.rt_log_file;
    reset_buffers();
    setup_RTGraph();
    setup_duration();
    if (!s.dirs.rt_log_file.empty()) setWindowTitle("RATE TEST  -  " + qs_file(s.dirs.rt_log_file));
}

void frmRTGraph::setup_RTGraph() {
    Chart& g = *ui->RTGraph;
    g.set_title("Real Time Rate Test");
    g.set_axis_title(ChartAxis::left, "Flow(ml/hr)");
    g.set_axis_title(ChartAxis::x, "Data Points");
    g.set_set_count(2);
    g.set_legend_text(1, "Instantaneous Flow");
    g.set_legend_text(2, "Average Flow");
    g.set_scrolling(25);
    const AxisChange start = FlowAxis::initial(shared().report_rec.set_rates);
    g.set_range(ChartAxis::left, *start.min, *start.max);
    g.draw_now();
}

void frmRTGraph::setup_duration() {
    const DownloadChoice c = run_choice();
    if (!c.run_indefinitely) {
        rt_time_left = std::lround(leading_number(c.duration_minutes) * 60);
        DurationTimer.start(1000);
    } else {
        DurationTimer.stop();
    }
    GetDataTimer.start(std::max(1, c.poll_seconds) * 1000);
}

void frmRTGraph::take_reply(const std::string& reply) {
    const Parsed<RTData> parsed = process_rt_data(reply);
    if (!parsed.ok()) return;  // a reply that cannot be held is dropped whole
    reading = parsed.data;
    display_realtime_data();
    graph_realtime_data();
    const SharedState& s = shared();
    if (run_choice().save_to_file && !s.dirs.rt_log_file.empty()) current_data_to_file();
}

void frmRTGraph::display_realtime_data() {
    ui->fraRTData->setTitle(qs(flow_range_caption(reading.range)));
    ui->lblElapsedTime->setText(qs(format_picture(reading.hours, "00") + ":" + format_picture(reading.minutes, "00") +
                                   ":" + format_picture(reading.seconds, "00")));
    ui->lblIntFlow->setText(qs(general_number(reading.flow)));
    ui->lblAvgFlow->setText(qs(general_number(reading.avg_flow)));
    ui->lblVol->setText(qs(general_number(reading.volume)));
    ui->lblPres->setText(qs(general_number(reading.pressure)));
}

void frmRTGraph::graph_realtime_data() {
    Chart& g = *ui->RTGraph;
    const AxisChange c = axis_.sample(reading.flow, reading.avg_flow);
    if (c.min || c.max) {
        const AxisRange now = g.range(ChartAxis::left);
        g.set_range(ChartAxis::left, c.min.value_or(now.min), c.max.value_or(now.max));
    }
    const bool ok = g.scroll_in(1, static_cast<float>(reading.flow)) &&
                    g.scroll_in(2, static_cast<float>(reading.avg_flow));
    if (!ok) msg_box("Bad graph data.", box_exclamation, "BAD DATA");
    g.repaint_soon();
}

void frmRTGraph::current_data_to_file() {
    RunLogs& logs = run_logs();
    const SingleRateRow row{reading.hours, reading.minutes, reading.seconds, reading.flow,
                            reading.avg_flow, reading.volume, reading.pressure};
    // A row that cannot be written is lost quietly; the test goes on.
    logs.rt_file.write(logs.rt.row(row));
}

void frmRTGraph::seconds_to_hhmmss() { ui->lblTimeLeft->setText(qs(kyt::seconds_to_hhmmss(rt_time_left))); }

void frmRTGraph::DurationTimer_Timer() {
    if (!run_choice().run_indefinitely) {
        --rt_time_left;
        seconds_to_hhmmss();
    } else {
        ui->lblTimeLeft->setText("N/A");
    }
    next_phase_when_up(rt_time_left);
}

const std::string& frmRTGraph::summary_file() const { return shared().dirs.rt_sum_file; }
const BoxMessage& frmRTGraph::summary_write_error() const { return rt_summary_write_error; }
