#pragma once
// The download dialog, where all work with the analyser begins: the operator
// picks a channel and a mode (summary, data log, real-time test or receive
// any); real-time mode opens the criteria of the single-rate and occlusion
// tests. The dialog stays loaded, hidden, for the whole of a run, and the run
// reads the operator's choice from it through choice().
//
// OK checks that the choice is complete and then emits options_accepted().
// The run itself is started by whoever handles that signal: the handler
// evaluates the options (files, header, log head, first command) and sets
// download_ok in the program-wide state; when that is set after the signal,
// OK marks the summary header open and hides the dialog, and the main
// window's activation opens the capture or test screen.

#include <QDialog>

#include "acquisition/download_choice.h"
#include "acquisition/run_phases.h"

namespace Ui {
class frmDownload;
}

class frmDownload : public QDialog {
    Q_OBJECT
public:
    explicit frmDownload(QWidget* parent = nullptr);
    ~frmDownload() override;

    // The operator's choice as the controls hold it now.
    kyt::DownloadChoice choice() const;

    // Reads the options into download_mode and channel of the program-wide
    // state and into the three flags below.
    void get_download_options();

    void disable_single_options();
    void enable_single_options();
    void disable_occl_options();
    void enable_occl_options();
    void enable_test_options();
    void disable_test_options();
    void enable_realtime_criteria();
    void disable_realtime_criteria();

    void CmdOK_Click();
    void cmdCancel_Click();

    // The central decision at OK: the files asked for, the header filled in,
    // the capture screen prepared or the log head written, and the first
    // command sent. Sets download_ok when the run may go on.
    void evaluate_download_options();

    // Open the log of the single-rate or occlusion test and write its head,
    // when the run saves to files. A name that cannot be written is asked
    // for again; giving that up clears download_ok.
    void write_RTfile_header();
    void write_OTfile_header();

    // The phases of a run: the next phase (single-rate test, its summary,
    // occlusion test, its summary, end), the start of the occlusion test,
    // and the end of everything with unfinished logs thrown away. Each is
    // decided by the run's phase machine and carried out here.
    void beginnextproc();
    void startottest();
    void stopalltests();
    // The serial device went away during a live run: the logs being written
    // are closed with every row they hold, the run ends and the main window
    // comes back.
    void line_lost();

    // Set by get_download_options and never cleared while the form is loaded:
    // once a press of OK has passed a check, later presses pass it too.
    bool mode_chosen = false;
    bool channel_chosen = false;
    bool criteria_complete = false;
    // The test number the run's commands carry: 1 single-rate, 4 occlusion;
    // 0 until a run sets it.
    int test_select = 0;

signals:
    void options_accepted();

private:
    void start_capture(char mode);
    void start_realtime();
    void write_file_header(bool single_rate);
    void abandon_realtime();
    void carry_out(const std::vector<kyt::RunAction>& actions);
    bool ui_save_to_file() const;

    // The click rules. A check box's rule also runs when a rule of the form
    // changes its state, and an option's rule when a rule turns it on, so the
    // controls it governs always follow it.
    void optRealTime_Click();
    void chkSingle_Click();
    void chkOccl_Click();
    void chkReport_Click();
    void optDuration_Click();
    void optIndefinite_Click();

    Ui::frmDownload* ui;
};
