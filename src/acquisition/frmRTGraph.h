#pragma once
// The live screen of a single-rate test: polls the channel at the chosen
// interval, shows the newest values, draws instantaneous and average flow
// as a scrolling graph, writes a log row per poll, counts the test length
// down, and at the end of the test gathers the analyser's summary.

#include "acquisition/live_test_form.h"

namespace Ui {
class frmRTGraph;
}

class frmRTGraph : public LiveTestForm {
    Q_OBJECT
public:
    frmRTGraph();
    ~frmRTGraph() override;

    void initial_setup();
    void setup_RTGraph();
    void setup_duration();
    void display_realtime_data();
    void graph_realtime_data();
    void current_data_to_file();
    void seconds_to_hhmmss();
    void DurationTimer_Timer() override;

    // The newest poll, and the seconds left of the test length.
    kyt::RTData reading;
    long rt_time_left = 0;

protected:
    void take_reply(const std::string& reply) override;
    const std::string& summary_file() const override;
    const kyt::BoxMessage& summary_write_error() const override;

private:
    Ui::frmRTGraph* ui;
    kyt::FlowAxis axis_;
};
