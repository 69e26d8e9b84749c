#include "trumpet/frmTrumpetGraph.h"

#include <QCloseEvent>
#include <QDialog>
#include <QLabel>
#include <QShortcut>

#include "common/chart.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/printer.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/wait_cursor.h"
#include "graph/chart_output.h"
#include "graph/frmGraph.h"
#include "graph/log_reader.h"
#include "help/help_list_form.h"
#include "trumpet/trumpet_settings.h"
#include "ui_frmTrumpetGraph.h"

using namespace kyt;

namespace {

// The error axis runs this many percent either side of 0 at scale step 1.
constexpr double percent_per_scale_step = 15;
constexpr int scale_steps = 4;

std::string graph_file_name() {
    const frmGraph* g = forms::loaded<frmGraph>();
    return g ? g->graph_file_name : std::string();
}

// The log graph back in front, its figures brought up to date.
void back_to_log_graph() {
    if (frmGraph* g = forms::loaded<frmGraph>()) {
        g->show();
        g->update_graph_info();
    }
}

}  // namespace

frmTrumpetGraph::frmTrumpetGraph(QWidget* parent) : QWidget(parent), ui(new Ui::frmTrumpetGraph) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    for (int i = 0; i < 5; ++i) {
        max_percent_[i] = findChild<QLabel*>(QString("lblMaxErrorP_%1").arg(i));
        max_rate_[i] = findChild<QLabel*>(QString("lblMaxErrorR_%1").arg(i));
        min_percent_[i] = findChild<QLabel*>(QString("lblMinErrorP_%1").arg(i));
        min_rate_[i] = findChild<QLabel*>(QString("lblMinErrorR_%1").arg(i));
    }
    connect(ui->cmdScale, &QPushButton::clicked, this, &frmTrumpetGraph::cmdScale_Click);
    connect(ui->GetNewData, &QPushButton::clicked, this, &frmTrumpetGraph::GetNewData_Click);
    connect(ui->cmdSetRate, &QPushButton::clicked, this, &frmTrumpetGraph::cmdSetRate_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmTrumpetGraph::cmdPrint_Click);
    connect(ui->cmdSave, &QPushButton::clicked, this, &frmTrumpetGraph::cmdSave_Click);
    connect(ui->mnuExitGraph, &QPushButton::clicked, this, &frmTrumpetGraph::mnuExitGraph_Click);

    // F1 brings up the graph screens' help, as on the log graph.
    auto* help = new QShortcut(QKeySequence(Qt::Key_F1), this);
    connect(help, &QShortcut::activated, this, [] { show_help_list(HelpContext::graph); });

    Chart& g = *ui->TGraph;
    g.set_axis_title(ChartAxis::x, "Observation Period(minutes)");
    g.set_axis_title(ChartAxis::left, "Error(%)");

    // The load: the settings first; the form is placed only when they were
    // confirmed, for otherwise its activation closes it.
    if (auto* settings = qobject_cast<QDialog*>(forms::get("frmTrumpSet"))) settings->exec();
    if (shared().trumpet.trumpet_settings_ok) center_form(this);
}

frmTrumpetGraph::~frmTrumpetGraph() { delete ui; }

void frmTrumpetGraph::showEvent(QShowEvent* e) {
    QWidget::showEvent(e);
    if (e->spontaneous() || shown_once_) return;
    shown_once_ = true;
    Form_Activate();
}

void frmTrumpetGraph::closeEvent(QCloseEvent* e) {
    // The window's close box leaves as Exit does, back to the log graph.
    e->ignore();
    mnuExitGraph_Click();
}

void frmTrumpetGraph::Form_Activate() {
    if (QWidget* g = forms::find("frmGraph")) g->hide();
    ui->TGraph->clear();
    if (!shared().trumpet.trumpet_settings_ok) {
        forms::unload<frmTrumpetGraph>();
        back_to_log_graph();
        return;
    }
    update_trumpet_title();
    graph_trumpet();
    update_summary_data();
}

void frmTrumpetGraph::update_trumpet_title() { setWindowTitle(qs_file(trumpet_title(graph_file_name()))); }

void frmTrumpetGraph::graph_trumpet() {
    const WaitCursor busy;
    const TrumpetState& t = shared().trumpet;
    result_ = computation_.run(graph_series(), {t.interpolation_interval, t.trumpet_start_time, t.trumpet_end_time});
    ui->cmdPrint->setEnabled(result_.ok());
    ui->cmdSave->setEnabled(result_.ok());
    Chart& g = *ui->TGraph;
    g.clear();
    if (!result_.ok()) {
        msg_box("The trumpet graph cannot be shown. " + result_.error + ".", box_critical, "ERROR");
        return;
    }
    // Three sets of five points at the observation periods: the highest
    // errors, the lowest, and the overall error as a level line.
    const double range = t.trumpet_scale * percent_per_scale_step;
    g.set_range(ChartAxis::left, -range, range);
    g.set_tick_divisions(ChartAxis::left, 2);
    g.set_range(ChartAxis::x, 0, 32);
    g.set_tick_step(ChartAxis::x, 4, 4);
    g.set_set_count(3);
    for (ChartText c : {ChartText::title, ChartText::axis_titles, ChartText::tick_labels, ChartText::legend})
        g.set_text_size(c, c == ChartText::title ? 150 : 100);
    std::vector<double> x, max, min, avg;
    for (const auto& row : result_.trumpet_table) {
        x.push_back(row[observation_minutes]);
        max.push_back(row[max_error_percent]);
        min.push_back(row[min_error_percent]);
        avg.push_back(result_.trumpet_avg_error);
    }
    g.set_points(1, x, max);
    g.set_points(2, x, min);
    g.set_points(3, x, avg);
    const char* legends[] = {"Max Error", "Min Error", "Avg Error"};
    for (int set = 1; set <= 3; ++set) {
        g.set_legend_text(set, legends[set - 1]);
        g.set_curve_style(set, CurveStyle::line_and_points);
    }
    g.draw_now();
}

void frmTrumpetGraph::update_summary_data() {
    const TrumpetState& t = shared().trumpet;
    const TrumpetSummaryTexts s =
        trumpet_summary_texts(result_, graph_series().base_rate, t.trumpet_start_time, t.trumpet_end_time);
    ui->lblSetRate->setText(qs(s.set_rate));
    // A run that was abandoned leaves nothing else to show.
    if (!result_.ok()) {
        for (int i = 0; i < 5; ++i)
            for (QLabel* cell : {max_percent_[i], max_rate_[i], min_percent_[i], min_rate_[i]}) cell->clear();
        ui->lblAvgRate->setText("Avg Rate:");
        ui->lblAvgError->setText("% Error:");
        ui->lblAnalysisPeriod->clear();
        return;
    }
    for (std::size_t i = 0; i < 5; ++i) {
        max_percent_[i]->setText(qs(s.max_error_percent[i]));
        max_rate_[i]->setText(qs(s.max_error_rate[i]));
        min_percent_[i]->setText(qs(s.min_error_percent[i]));
        min_rate_[i]->setText(qs(s.min_error_rate[i]));
    }
    ui->lblAvgRate->setText(qs(s.avg_rate));
    ui->lblAvgError->setText(qs(s.avg_error));
    ui->lblAnalysisPeriod->setText(qs(s.analysis_period));
}

void frmTrumpetGraph::cmdScale_Click() {
    std::int16_t& scale = shared().trumpet.trumpet_scale;
    scale = static_cast<std::int16_t>(scale % scale_steps + 1);
    graph_trumpet();
    show();
}

void frmTrumpetGraph::show_settings() {
    if (auto* settings = qobject_cast<QDialog*>(forms::get("frmTrumpSet"))) settings->exec();
    Form_Activate();
}

void frmTrumpetGraph::GetNewData_Click() { show_settings(); }

void frmTrumpetGraph::cmdSetRate_Click() {
    if (auto* dialog = qobject_cast<QDialog*>(forms::get("frmSetRate"))) dialog->exec();
    // The activation that follows the dialog computes with the rate it left.
    shared().rate_changed = false;
    Form_Activate();
}

void frmTrumpetGraph::cmdPrint_Click() {
    if (msg_box("Are you sure want to print the graph?", box_ask, "PRINTING GRAPH") != answer_yes) {
        msg_box("Printing graph cancelled", box_exclamation, "CANCEL");
        return;
    }
    const WaitCursor busy;
    const TrumpetState& t = shared().trumpet;
    const TrumpetPageTexts page =
        trumpet_page_texts({&result_, graph_series().base_rate, t.calculation_length, t.trumpet_start_time,
                            t.trumpet_end_time, t.interpolation_interval, graph_file_name()});
    Printer& p = *services().printer;
    p.set_orientation(PageOrientation::landscape);
    p.set_font_name("courier new");
    bool ok = print_page_heading(p, "Trumpet Graph", 16, 2);
    const auto lines_at = [&](double x, const std::vector<std::string>& lines) {
        for (const std::string& line : lines) {
            p.set_x(x);
            ok = ok && p.print_line(line);
        }
    };
    lines_at(0.5, page.figures);
    if (!page.warning.empty()) {
        p.set_italic(true);
        p.set_font_size(10);
        lines_at(0.65, page.warning);
        p.set_font_size(12);
        p.set_italic(false);
    }
    lines_at(0.5, {page.file_line});
    ok = ok && p.print_line();
    lines_at(0.5, page.table);
    // The chart an inch lower than on the log graph's page.
    ok = ok && print_chart_box(p, *ui->TGraph, 4);
    ok = p.end_job() && ok;
    if (!ok) msg_box("Error Printing, please refer to your Windows Manual", box_critical, "ERROR");
}

void frmTrumpetGraph::cmdSave_Click() {
    save_chart_image(*ui->TGraph,
                     {"Bad Trumpet Graph File Name Suffix", "Error in trumpet graph file name",
                      "Trumpet graph save cancelled"});
}

void frmTrumpetGraph::mnuExitGraph_Click() {
    // The base rate keeps whatever the rate dialog made of it.
    forms::unload<frmTrumpetGraph>();
    back_to_log_graph();
}
