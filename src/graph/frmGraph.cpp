#include "graph/frmGraph.h"

#include <QCloseEvent>
#include <QDialog>

#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "common/chart.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/printer.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/wait_cursor.h"
#include "graph/chart_output.h"
#include "graph/log_reader.h"
#include "help/help_list_form.h"
#include "trumpet/trumpet_settings.h"
#include "ui_frmGraph.h"

using namespace kyt;

namespace {

constexpr const char* flow_fitted = "Average Flow, Centered, Fitted";

// Curves as the chart draws them: shown as a line, or hidden with their data.
CurveStyle shown_if(bool on) { return on ? CurveStyle::line : CurveStyle::hidden; }

}  // namespace

frmGraph::frmGraph(QWidget* parent) : QMainWindow(parent), ui(new Ui::frmGraph) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->mnuOpen, &QAction::triggered, this, &frmGraph::mnuOpen_Click);
    connect(ui->mnuExitGraph, &QAction::triggered, this, &frmGraph::exit_graph);
    connect(ui->cmdGraph_Exit, &QPushButton::clicked, this, &frmGraph::exit_graph);
    connect(ui->cmdTimeLeft, &QPushButton::clicked, this, &frmGraph::cmdTimeLeft_Click);
    connect(ui->cmdTimeRight, &QPushButton::clicked, this, &frmGraph::cmdTimeRight_Click);
    connect(ui->cmdScaleLeft, &QPushButton::clicked, this, &frmGraph::cmdScaleLeft_Click);
    connect(ui->cmdScaleRight, &QPushButton::clicked, this, &frmGraph::cmdScaleRight_Click);
    connect(ui->cmdIncreaseFlowScale, &QPushButton::clicked, this, &frmGraph::cmdIncreaseFlowScale_Click);
    connect(ui->cmdFlow, &QPushButton::clicked, this, &frmGraph::cmdFlow_Click);
    connect(ui->cmdVolume, &QPushButton::clicked, this, &frmGraph::volume_toggle);
    connect(ui->cmdNormal, &QPushButton::clicked, this, &frmGraph::cmdNormal_Click);
    connect(ui->mnuPrintGraph, &QAction::triggered, this, &frmGraph::mnuPrintGraph_Click);
    connect(ui->mnuBMP, &QAction::triggered, this, &frmGraph::mnuBMP_Click);
    connect(ui->cmdSetRate, &QPushButton::clicked, this, &frmGraph::cmdSetRate_Click);
    connect(ui->mnuTrumpetGraph, &QAction::triggered, this, &frmGraph::mnuTrumpetGraph_Click);
    // Help and About, when this build holds their screens.
    ui->mnuGraphHelp->setEnabled(forms::has_factory("frmKYTGHelp"));
    ui->mnuAbout->setEnabled(forms::has_factory("frmAbout"));
    connect(ui->mnuGraphHelp, &QAction::triggered, this, [] { show_help_list(HelpContext::graph); });
    connect(ui->mnuAbout, &QAction::triggered, this, [] {
        if (auto* about = qobject_cast<QDialog*>(forms::get("frmAbout"))) about->exec();
    });

    center_form(this);
    Chart& g = *ui->DGraph;
    g.set_placeholder("Open a file for display...", 500);
    g.set_text_size(ChartText::title, 150);
    g.set_axis_title(ChartAxis::left, "Flow (ml/hr)");
    g.set_axis_title(ChartAxis::x, "Time (minutes)");
    flow_scale_state = 1;
}

frmGraph::~frmGraph() { delete ui; }

void frmGraph::display_graph_dialog() {
    CommonDialog& d = common_dialog();
    d.initial_dir = shared().dirs.save_dir;
    d.default_ext = std::string(GraphFileDialog::default_extension);
    d.filter = std::string(GraphFileDialog::filter);
    d.title = std::string(GraphFileDialog::title);
    shared().dirs.file_name = open_and_remember(d);
}

void frmGraph::mnuOpen_Click() {
    window = TimeWindow{};
    anchor_index = 0;
    display_graph_dialog();
    const std::string name = shared().dirs.file_name;
    graph_file_name = name;
    if (name.empty()) return;
    LogReadResult read;
    {
        const WaitCursor busy;
        read = read_log_file(name, single_rate_test);
    }
    single_rate_test = read.single_rate_test;
    // A refused file leaves the graph on show as it was.
    if (!read.accepted()) {
        tell(*read.message);
        return;
    }
    graph_series() = std::move(read.series);
    first_draw();
}

void frmGraph::first_draw() {
    flow_shown = true;
    ui->cmdVolume->setText("Vol Off");
    ui->cmdFlow->setText("Flow Off");
    ui->DGraph->set_axis_title(ChartAxis::right, "Volume (ml)");
    graph_data4();
    if (too_many_points) return;
    update_graph_info();
    enable_options();
    flow_scale_state = 1;
    ui->lblFlowTitle->setText(flow_fitted);
}

// The three series into the chart, each point at its time.
bool frmGraph::load_sets() {
    Chart& g = *ui->DGraph;
    const std::size_t n = graph_series().graph_time.size();
    std::vector<double> flow(n), avg(n), volume(n);
    for (std::size_t i = 0; i < n; ++i) {
        flow[i] = static_cast<float>(graph_series().graph_flow[i]);
        avg[i] = static_cast<float>(graph_series().graph_avg_flow[i]);
        volume[i] = static_cast<float>(graph_series().graph_volume[i]);
    }
    return g.set_points(1, graph_series().graph_time, flow) && g.set_points(2, graph_series().graph_time, avg) &&
           g.set_points(3, graph_series().graph_time, volume);
}

// The legends and the whole series into the chart; a chart that cannot
// take them is told and the graph stays as the chart left it.
bool frmGraph::reload() {
    Chart& g = *ui->DGraph;
    g.set_legend_text(1, "Flow");
    g.set_legend_text(2, "Avg Flow");
    g.set_legend_text(3, "Volume");
    if (load_sets()) return true;
    msg_box("Too many points to plot, contact Corvane for software upgrade", box_critical, "ERROR");
    too_many_points = true;
    return false;
}

void frmGraph::set_flow_axis(double min, double max) {
    Chart& g = *ui->DGraph;
    g.set_range(ChartAxis::left, min, max);
    g.set_tick_divisions(ChartAxis::left, 4);
}

void frmGraph::graph_data4() {
    const WaitCursor busy;
    Chart& g = *ui->DGraph;
    set_flow_axis(graph_series().flow_scale_min, graph_series().flow_scale_max);
    g.set_set_count(3);
    g.set_axis_of(3, ChartAxis::right);
    too_many_points = false;
    if (!reload()) return;
    anchor_index = 0;
    g.set_drawn_points(1, opening_last_point(graph_series().graph_time, anchor_index));
    g.set_range(ChartAxis::x, 0, 10);
    g.set_tick_step(ChartAxis::x, 10, 5);
    g.set_curve_style(1, shown_if(flow_shown));
    g.set_curve_style(2, CurveStyle::line);
    g.set_curve_style(3, shown_if(ui->cmdVolume->text() == "Vol Off"));
    for (ChartText t : {ChartText::title, ChartText::axis_titles, ChartText::tick_labels, ChartText::legend})
        g.set_text_size(t, t == ChartText::title ? 150 : 100);
    g.set_legend_text(1, ui->cmdFlow->text() == "Flow Off" ? "Flow" : " ");
    g.draw_now();
}

void frmGraph::graph_data2() {
    Chart& g = *ui->DGraph;
    const AxisRange x = g.range(ChartAxis::x);
    set_flow_axis(graph_series().flow_scale_min, graph_series().flow_scale_max);
    if (!reload()) return;
    // The stretch the chart showed, found again among the points; the range
    // moves on by one record, as this rebuild always has.
    const int points = g.point_count(1);
    int i = 1;
    while (i < points && *g.point_x(1, i) < x.min) ++i;
    const int first = i;
    while (i < points && *g.point_x(1, i) < x.max) ++i;
    const int last = i - 1;
    g.set_drawn_points(first, last);
    g.set_range(ChartAxis::x, g.point_x(1, first + 1).value_or(x.min), g.point_x(1, last + 1).value_or(x.max));
    g.set_curve_style(1, shown_if(flow_shown));
    g.set_curve_style(2, CurveStyle::line);
    g.set_legend_text(1, ui->cmdFlow->text() == "Flow Off" ? "Flow" : " ");
    g.draw_now();
}

void frmGraph::show_stretch() {
    Chart& g = *ui->DGraph;
    g.set_range(ChartAxis::x, window.x_min, window.x_max);
    g.set_drawn_points(1, window.last_point);
    g.repaint_soon();
    ui->cmdTimeLeft->setEnabled(window.later_enabled);
    ui->cmdTimeRight->setEnabled(window.earlier_enabled);
    ui->cmdScaleLeft->setEnabled(window.longer_enabled);
    ui->cmdScaleRight->setEnabled(window.shorter_enabled);
}

// The arrows work from the x range the chart shows.
#define KYT_ARROW(handler, step)                                   \
    void frmGraph::handler() {                                     \
        const AxisRange x = ui->DGraph->range(ChartAxis::x);       \
        window.x_min = x.min;                                      \
        window.x_max = x.max;                                      \
        window.step(graph_series().graph_time);                            \
        show_stretch();                                            \
    }
KYT_ARROW(cmdTimeLeft_Click, later)
KYT_ARROW(cmdTimeRight_Click, earlier)
KYT_ARROW(cmdScaleLeft_Click, longer)
KYT_ARROW(cmdScaleRight_Click, shorter)
#undef KYT_ARROW

void frmGraph::cmdIncreaseFlowScale_Click() {
    const FlowScale s = next_flow_scale(flow_scale_state, graph_series().base_rate, graph_series().flow_scale_max);
    ui->lblFlowTitle->setText(qs(s.title));
    set_flow_axis(s.min, s.max);
    ui->DGraph->repaint_soon();
}

void frmGraph::cmdFlow_Click() {
    flow_shown = ui->cmdFlow->text() == "Flow On";
    ui->cmdFlow->setText(flow_shown ? "Flow Off" : "Flow On");
    graph_data2();
    ui->lblFlowTitle->setText(flow_fitted);
    // The volume curve as it was: its caption turned over and back.
    ui->cmdVolume->setText(ui->cmdVolume->text() == "Vol On" ? "Vol Off" : "Vol On");
    volume_toggle();
}

void frmGraph::volume_toggle() {
    Chart& g = *ui->DGraph;
    if (ui->cmdVolume->text() == "Vol On") {
        ui->cmdVolume->setText("Vol Off");
        g.set_curve_style(3, CurveStyle::line);
        g.set_axis_title(ChartAxis::right, "Volume (ml)");
        g.set_legend_text(3, "Volume");
    } else {
        ui->cmdVolume->setText("Vol On");
        g.set_curve_style(3, CurveStyle::hidden);
        g.set_axis_title(ChartAxis::right, "");
        g.set_legend_text(2, "Avg Flow");
        g.set_legend_text(3, " ");
    }
    g.set_legend_text(1, ui->cmdFlow->text() == "Flow Off" ? "Flow" : " ");
    g.repaint_soon();
}

void frmGraph::cmdNormal_Click() {
    ui->cmdVolume->setText("Vol On");
    volume_toggle();
    ui->cmdTimeLeft->setEnabled(true);
    ui->cmdScaleLeft->setEnabled(true);
    ui->cmdTimeRight->setEnabled(false);
    ui->cmdScaleRight->setEnabled(false);
    ui->cmdFlow->setText("Flow Off");
    flow_shown = true;
    ui->lblFlowTitle->setText(flow_fitted);
    window = TimeWindow{};
    anchor_index = 0;
    graph_data4();
}

void frmGraph::update_graph_info() {
    const GraphInfo g = graph_info(graph_series(), graph_file_name);
    setWindowTitle(qs_file(g.caption));
    ui->lblNoPoints->setText(qs(g.points));
    ui->lblTotalTime->setText(qs(g.total_time));
    ui->lblMaxFlow->setText(qs(g.max_flow));
    ui->lblMinFlow->setText(qs(g.min_flow));
    ui->lblAvgFlow->setText(qs(g.avg_flow));
    ui->lblSetRate->setText(qs(g.set_rate));
}

void frmGraph::enable_options() {
    for (QWidget* w : {static_cast<QWidget*>(ui->cmdIncreaseFlowScale), static_cast<QWidget*>(ui->cmdTimeLeft),
                       static_cast<QWidget*>(ui->cmdScaleLeft), static_cast<QWidget*>(ui->cmdVolume),
                       static_cast<QWidget*>(ui->cmdNormal), static_cast<QWidget*>(ui->cmdFlow),
                       static_cast<QWidget*>(ui->Label1), static_cast<QWidget*>(ui->Label3),
                       static_cast<QWidget*>(ui->lblFlowTitle)})
        w->setEnabled(true);
    ui->mnuGraphSettings->setEnabled(true);
    ui->cmdSetRate->setEnabled(true);
    ui->mnuBMP->setEnabled(true);
    ui->mnuPrintGraph->setEnabled(true);
    ui->mnuTrumpetGraph->setEnabled(forms::has_factory("frmTrumpetGraph"));
    ui->cmdTimeRight->setEnabled(false);
    ui->cmdScaleRight->setEnabled(false);
}

void frmGraph::cmdSetRate_Click() {
    if (auto* dialog = qobject_cast<QDialog*>(forms::get("frmSetRate"))) dialog->exec();
    update_graph_info();
}

void frmGraph::mnuTrumpetGraph_Click() {
    TrumpetState& t = shared().trumpet;
    t.trumpet_scale = 1;
    if (const auto refusal = check_trumpet_data(graph_series())) {
        tell(*refusal);
        return;
    }
    t.trumpet_settings_ok = false;
    if (QWidget* trumpet = forms::get("frmTrumpetGraph")) trumpet->show();
}

void frmGraph::exit_graph() {
    if (msg_box("Are you sure want to quit KYT Graphing section?", box_ask, "EXIT DATA LOG GRAPH") != answer_yes)
        return;
    forms::unload<frmGraph>();
    if (QWidget* main_window = forms::find("frmMain")) main_window->show();
}

void frmGraph::mnuPrintGraph_Click() {
    if (msg_box("Are you sure want to print the graph?", box_ask, "PRINTING GRAPH") != answer_yes) {
        msg_box("Printing graph cancelled", box_exclamation, "CANCEL");
        return;
    }
    const WaitCursor busy;
    Printer& p = *services().printer;
    p.set_orientation(PageOrientation::landscape);
    p.set_font_name("courier new");
    bool ok = print_page_heading(p, "Data Log Graph", 18, 1);
    for (const std::string& line : graph_print_lines(graph_series(), graph_file_name)) {
        p.set_x(0.5);
        ok = ok && p.print_line(line);
    }
    ok = ok && p.print_line();
    // The chart in its box three inches from the top.
    ok = ok && print_chart_box(p, *ui->DGraph, 3);
    ok = p.end_job() && ok;
    if (!ok) msg_box("Error Printing, please refer to your Windows Manual", box_critical, "ERROR");
}

void frmGraph::mnuBMP_Click() {
    save_chart_image(*ui->DGraph, {"Bad Graph File Name Suffix", "Error in graph file name", ""});
}
