#pragma once
// What the single-rate and occlusion test screens share: the three timers
// (poll, summary, test length), the poll tick up to the reading of a reply,
// the short error replies, the gathering and writing of the summary at the
// end of the test, and Stop and Cancel. The download dialog drives the
// phases of the run and reaches a screen through this class; each screen
// adds its labels, its graph and its log rows.

#include <QTimer>
#include <QWidget>

#include <string>

#include "acquisition/live_test.h"
#include "acquisition/run_phases.h"
#include "common/box_message.h"
#include "common/form_roles.h"

class QPushButton;

class LiveTestForm : public QWidget, public kyt::LiveTestScreen {
    Q_OBJECT
public:
    ~LiveTestForm() override;

    // LiveTestScreen
    void start_polling() override { GetDataTimer.start(); }

    void set_timer(kyt::RunTimer timer, bool on);
    // The hourglass on the form with Stop and Cancel disabled, or the normal
    // pointer back.
    void set_busy(bool on);
    // Asks the analyser for the test's summary; GetSumTimer gathers it.
    void create_summary_file();

    void GetDataTimer_Timer();
    void GetSumTimer_Timer();
    virtual void DurationTimer_Timer() = 0;
    void cmdStop_Click();
    void cmdCancel_Click();

    QTimer GetDataTimer;
    QTimer GetSumTimer;
    QTimer DurationTimer;

protected:
    LiveTestForm();
    // The operator's choice in the download dialog, which stays loaded for
    // the run.
    static kyt::DownloadChoice run_choice();
    // Fresh serial buffers; a failure of the line is told.
    static void reset_buffers();
    // Below one second left the test is over and the run moves on.
    void next_phase_when_up(long seconds_left);
    // Connects the buttons and timers once the form's widgets exist.
    void wire(QPushButton* stop, QPushButton* cancel);
    // A poll reply of 3 characters or more: read, shown, graphed, logged.
    virtual void take_reply(const std::string& reply) = 0;
    // The summary file of this test and what is told when it cannot be
    // written.
    virtual const std::string& summary_file() const = 0;
    virtual const kyt::BoxMessage& summary_write_error() const = 0;
    // The close box ends the test as Stop does, so that nothing is lost.
    void closeEvent(QCloseEvent* event) override;

private:
    void process_errors(kyt::ReplyError error);
    void line_lost();
    bool write_summary();

    kyt::SummaryGather gather_;
    QPushButton* stop_ = nullptr;
    QPushButton* cancel_ = nullptr;
};
