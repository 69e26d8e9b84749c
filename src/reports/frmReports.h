#pragma once
// The report screen. During a download it is the small capture panel: each
// tick of GetDataTimer reads what the serial port delivered, hands it to a
// kyt::Capture and carries out what the tick says (show a line, tell an
// error reply, abandon the capture, or write the finished transfer to
// tempfile.dat in the save folder). Opened from the main window it is the
// report editor, whose menus name the editing entries.

#include <QMainWindow>
#include <QTimer>
#include <optional>
#include <string>

#include "common/form_roles.h"
#include "link/protocol.h"
#include "reports/capture.h"

namespace Ui {
class frmReports;
}

class frmReports : public QMainWindow, public kyt::ReportScreen {
    Q_OBJECT
public:
    explicit frmReports(QWidget* parent = nullptr);
    ~frmReports() override;

    // ReportScreen
    void show_as_capture_panel() override;
    bool is_capture_panel() const override;
    void show_as_editor() override;
    void disable_print() override;

    // Run at load: a fresh capture, and the port emptied of what an earlier
    // command left in it.
    void initial_setup();
    // What the download dialog does to the form before the main window
    // shows it: a fresh capture for the mode and header of `setup`, the
    // menus that need a report in hand disabled, and in mode "4" (receive
    // anything) the waiting text and a Stop button.
    void prepare_capture(kyt::CaptureSetup setup);

    // How much report text the capture holds in hand; long transfers keep
    // it near the edit limit by moving their middle to overflow pages.
    std::size_t held_text_length() const { return capture_ ? capture_->report_text().size() : 0; }
    void GetDataTimer_Timer();
    void cmdCancel_Click();
    // Copies the received transfer (tempfile.dat) to the report's file name
    // and closes the form. The edits made in the box do not go into it.
    void cmdSave_Click();
    // Tells what an error reply means; "not connected" also abandons the
    // capture and closes the form.
    void process_errors(kyt::ReplyError error);

    QTimer GetDataTimer;

private:
    void enable_report_entries(bool save_file);
    void end_of_transfer(const std::string& tempfile_text);
    bool write_tempfile(const std::string& text);
    void leave_capture();

    Ui::frmReports* ui;
    std::optional<kyt::Capture> capture_;
    kyt::CaptureSetup setup_;
};
