#pragma once
// The report screen. During a download it is the small capture panel: each
// tick of GetDataTimer reads what the serial port delivered, hands it to a
// kyt::Capture and carries out what the tick says (show a line, tell an
// error reply, abandon the capture, or write the finished transfer to
// tempfile.dat in the save folder). Opened from the main window it is the
// report editor: open a summary or a data log, edit it, save it, print it or
// convert it to a spreadsheet file.

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

    // The editor.
    // Asks for a report file and opens it for editing (download mode "5").
    void mnuOpen_Click();
    // Puts the text of the file file_name in the box when it is a report.
    void load_report_file();
    // Writes the box's text under the name of the current download mode;
    // false when nothing was written (no name, or the file could not be
    // written: the text stays in the box).
    bool write_report_file();
    // Writes the edited text and leaves.
    void mnuClose_Click();
    // Leaves without saving.
    void mnuQuit_Click();
    // Writes the report under a new name, when a download has opened a
    // report with a header.
    void save_as();
    // Print and the Print Report entry: asked, then print_screen.
    void cmdPrint_Click();
    // Prints the report's file (or the received transfer) with page marks
    // and the file's name on each page.
    void print_screen();
    // Converts a data log to a ".CSV" file beside it.
    void mnuConvertPrn_Click();

    // What print_screen prints: "screen" (the received transfer in
    // tempfile.dat), "none" (no report in hand) or a file's name.
    std::string print_source = "none";

    QTimer GetDataTimer;

private:
    void enable_report_entries(bool save_file);
    void end_of_transfer(const std::string& tempfile_text);
    bool write_tempfile(const std::string& text);
    void leave_capture();
    void connect_editor();
    void enable_editing(bool on);
    std::string editor_text() const;
    void save_before_conversion();

    Ui::frmReports* ui;
    std::optional<kyt::Capture> capture_;
    kyt::CaptureSetup setup_;
};
