#pragma once
// The live screen of an occlusion test: polls the channel every second,
// shows the pressure in PSI, mmHg and kPa, draws it in the unit chosen as a
// scrolling graph, writes a log row per poll, counts the test time down, and
// at the end gathers the analyser's summary.

#include "acquisition/live_test_form.h"

namespace Ui {
class frmOTGraph;
}

class frmOTGraph : public LiveTestForm {
    Q_OBJECT
public:
    frmOTGraph();
    ~frmOTGraph() override;

    void initial_setup();
    void setup_OTGraph();
    void display_realtime_data();
    void graph_realtime_data();
    void write_current_data();
    void DurationTimer_Timer() override;

    kyt::OTData reading;
    long ot_time_left = 0;

protected:
    void take_reply(const std::string& reply) override;
    const std::string& summary_file() const override;
    const kyt::BoxMessage& summary_write_error() const override;

private:
    Ui::frmOTGraph* ui;
    kyt::PressureAxis axis_;
};
