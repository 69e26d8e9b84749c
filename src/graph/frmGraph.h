#pragma once
// The data log graph: a stored single-rate log as flow and average flow on
// the left axis and volume on the right, against elapsed time. The whole
// series goes into the chart once per draw; the arrows move and resize the
// visible stretch, the toggles hide and show curves, and the flow axis steps
// through four scales.

#include <QMainWindow>

#include <string>

#include "graph/graph_view.h"
#include "graph/log_series.h"

namespace Ui {
class frmGraph;
}

class frmGraph : public QMainWindow {
    Q_OBJECT
public:
    explicit frmGraph(QWidget* parent = nullptr);
    ~frmGraph() override;

    void mnuOpen_Click();
    // Asks for the log; file_name holds the choice, empty when given up.
    void display_graph_dialog();
    // The first draw of a log just read.
    void first_draw();
    void cmdTimeLeft_Click();
    void cmdTimeRight_Click();
    void cmdScaleLeft_Click();
    void cmdScaleRight_Click();
    void cmdIncreaseFlowScale_Click();
    void cmdFlow_Click();
    void volume_toggle();
    void cmdNormal_Click();
    void update_graph_info();
    void enable_options();
    void exit_graph();
    // The base rate dialog, then the figures again.
    void cmdSetRate_Click();
    // One landscape page: the heading, the figures and the chart as it
    // stands on the screen.
    void mnuPrintGraph_Click();
    // The trumpet analysis of the log on show, for a log of an hour or more.
    void mnuTrumpetGraph_Click();
    // The chart to a BMP, WMF, JPG or GIF file.
    void mnuBMP_Click();

    std::string graph_file_name;
    kyt::TimeWindow window;
    int anchor_index = 0;
    bool too_many_points = false;
    bool flow_shown = true;
    int flow_scale_state = 1;
    bool single_rate_test = false;

private:
    void graph_data2();
    void graph_data4();
    bool load_sets();
    bool reload();
    void show_stretch();
    void set_flow_axis(double min, double max);

    Ui::frmGraph* ui;
};
