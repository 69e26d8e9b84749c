#include "reports/frmReports.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <cmath>

#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "app/settings/read_ini.h"
#include "app/settings/settings_store.h"
#include "common/clock.h"
#include "common/file_text.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/text.h"
#include "common/wait_cursor.h"
#include "link/global_comm.h"
#include "link/serial_line.h"
#include "reports/report_file.h"
#include "ui_frmReports.h"

using namespace kyt;

namespace {

// Positions and sizes of the capture panel are given in twips.
constexpr int twips_per_pixel = 15;
int px(int twips) { return twips / twips_per_pixel; }


// Copies a whole file. The copy takes the target's name only when complete,
// so a failure leaves no partial file under it.
bool copy_file_whole(const std::string& from, const std::string& to) {
    const std::optional<std::string> text = read_text_file(from);
    return text && replace_file_whole(to, *text);
}

}  // namespace

frmReports::frmReports(QWidget* parent) : QMainWindow(parent), ui(new Ui::frmReports) {
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    GetDataTimer.setObjectName("GetDataTimer");
    GetDataTimer.setParent(this);
    GetDataTimer.setInterval(100);
    connect(&GetDataTimer, &QTimer::timeout, this, &frmReports::GetDataTimer_Timer);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &frmReports::cmdCancel_Click);
    connect(ui->cmdSave, &QPushButton::clicked, this, &frmReports::cmdSave_Click);
    connect_editor();
    center_form(this);
    initial_setup();
}

frmReports::~frmReports() { delete ui; }

void frmReports::initial_setup() {
    GetDataTimer.start();
    SharedState& s = shared();
    s.report_text.clear();
    s.run.first_buffer = true;
    setup_ = CaptureSetup{false, s.run.download_mode, s.report_rec};
    capture_.emplace(setup_);

    // What an earlier command left in the port is read and dropped: once it
    // has come, a little more may follow, so the second reading waits until
    // the clock's seconds have moved on by more than one. The seconds wrap at
    // each minute, from 59 back to 0.
    try {
        SerialLine& line = *services().serial;
        if (line.input().empty()) return;
        Clock& clock = *services().clock;
        const int start = static_cast<int>(clock.timer()) % 60;
        for (;;) {
            const int moved = static_cast<int>(clock.timer()) % 60 - start;
            if (moved > 1 || (moved < 0 && moved >= -58)) break;
        }
        line.input();
    } catch (const SerialError& e) {
        GetDataTimer.stop();
        tell_serial_error(e);
    }
}

void frmReports::prepare_capture(CaptureSetup setup) {
    setup_ = std::move(setup);
    capture_.emplace(setup_);
    for (QAction* a : {ui->mnuClearAll, ui->mnuCut, ui->mnuCopy, ui->mnuPaste, ui->mnuDelete, ui->mnuOpen,
                       ui->mnuPrint, ui->mnuClose, ui->mnuConvertPrn})
        a->setEnabled(false);
    if (setup_.download_mode == '4') {
        // Receiving anything has no end the analyser announces: the operator
        // stops it.
        ui->txtData->setPlainText(qs(waiting_for_input_text));
        ui->cmdCancel->setText("Stop");
    } else {
        ui->txtData->clear();
    }
}

void frmReports::show_as_capture_panel() {
    // One line of text high: 1.2 times the height of a line of the box's
    // font, within the box's frame and margins.
    QPlainTextEdit* box = ui->txtData;
    const int line = static_cast<int>(std::ceil(1.2 * QFontMetrics(box->font()).height()));
    const int chrome = 2 * box->frameWidth() + 2 * static_cast<int>(std::ceil(box->document()->documentMargin()));
    box->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    box->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    box->setGeometry(px(120), px(120), box->width(), line + chrome);
    ui->cmdCancel->move(px(9000), px(1030));
    ui->cmdPrint->move(px(7440), px(1030));
    ui->cmdPrint->setVisible(true);
    ui->cmdSave->move(px(5880), px(1030));
    ui->cmdSave->setVisible(true);
    for (QMenu* m : {ui->mnuFile, ui->mnuEdit, ui->mnuOptions}) m->menuAction()->setVisible(false);
    menuBar()->setVisible(false);
    resize(width(), px(2100));
    GetDataTimer.start();
    center_form(this);
    show();
}

bool frmReports::is_capture_panel() const { return height() * twips_per_pixel < 3000; }

void frmReports::show_as_editor() {
    GetDataTimer.stop();
    for (QAction* a : {ui->mnuClose, ui->mnuClearAll, ui->mnuCut, ui->mnuCopy, ui->mnuPaste, ui->mnuDelete,
                       ui->mnuConvertPrn})
        a->setEnabled(false);
    setWindowTitle("REPORTS");
    center_form(this);
    show();
}

void frmReports::GetDataTimer_Timer() {
    if (!capture_) return;
    std::string input;
    try {
        input = services().serial->input();
    } catch (const SerialError& e) {
        // The device went away: what came so far stays on screen.
        GetDataTimer.stop();
        tell_serial_error(e);
        return;
    }
    const CaptureTick t = capture_->tick(input);
    if (t.has_data) enable_report_entries(setup_.save_file);
    if (t.shown) ui->txtData->setPlainText(qs(*t.shown));
    for (const ReplyError e : t.errors) {
        process_errors(e);
        // "Not connected" has closed the capture, and maybe the form.
        if (e == ReplyError::not_connected) return;
    }
    if (t.ended) end_of_transfer(t.tempfile_text);
}

void frmReports::enable_report_entries(bool save_file) {
    for (QAction* a : {ui->mnuPrint, ui->mnuClearAll, ui->mnuCut, ui->mnuCopy, ui->mnuPaste, ui->mnuDelete})
        a->setEnabled(true);
    if (save_file) ui->mnuClose->setEnabled(true);
}

void frmReports::process_errors(ReplyError error) {
    const std::string text = reply_error_text(error);
    if (text.empty()) return;
    msg_box(text, reply_error_style, reply_error_title);
    if (error != ReplyError::not_connected || !shared().run.report_pending) return;
    leave_capture();
    if (QWidget* main_window = forms::find("frmMain")) main_window->show();
}

void frmReports::disable_print() { ui->mnuPrint->setEnabled(false); }

void frmReports::cmdCancel_Click() {
    if (setup_.download_mode == '4' && ui->cmdCancel->text() == "Stop") {
        // The operator ends an open-ended receive; the form stays with what
        // came in.
        ui->cmdCancel->setText("Cancel");
        if (ui->txtData->toPlainText() != qs(waiting_for_input_text)) {
            ui->cmdPrint->setEnabled(true);
            if (setup_.save_file) ui->cmdSave->setEnabled(true);
        }
        GetDataTimer.stop();
        return;
    }
    leave_capture();
}

// Abandons the capture: the analyser is told to stop and the form goes.
void frmReports::leave_capture() {
    {
        const WaitCursor busy;
        shared().run.report_pending = false;
        GetDataTimer.stop();
        // A line that has closed (the device went away, and that was told)
        // can carry no stop command.
        if (services().serial->port_open()) stop_current_test();
    }
    forms::unload<frmReports>();
}

void frmReports::end_of_transfer(const std::string& tempfile_text) {
    SharedState& s = shared();
    ui->txtData->setPlainText(qs(end_of_download_text));
    s.run.report_pending = false;
    s.run.first_buffer = true;
    s.report_text = capture_->report_text();
    GetDataTimer.stop();
    if (!write_tempfile(tempfile_text)) return;
    // Print takes the received transfer from its file.
    print_source = s.dirs.file_name == tempfile_path(s.dirs.save_dir) ? "screen" : s.dirs.file_name;
    ui->cmdPrint->setEnabled(true);
    if (setup_.save_file) ui->cmdSave->setEnabled(true);
    if (setup_.download_mode == '4') ui->cmdCancel->setText("&Cancel");
}

// Writes the finished transfer to tempfile.dat in the save folder. When that
// cannot be written the operator may choose another name, which is tried in
// turn; false when none was chosen.
bool frmReports::write_tempfile(const std::string& text) {
    SharedState& s = shared();
    s.dirs.file_name = tempfile_path(s.dirs.save_dir);
    while (!write_text_file(s.dirs.file_name, text)) {
        tell(tempfile_bad_name);
        CommonDialog& d = common_dialog();
        d.file_name.clear();
        std::string chosen;
        try {
            chosen = services().dialogs->show_save(d);
        } catch (const FileDialogError&) {
            chosen.clear();
        }
        d.file_name = chosen;
        if (chosen.empty()) {
            tell(tempfile_save_cancelled);
            s.run.rt_running = false;
            return false;
        }
        s.dirs.file_name = chosen;
        remember_save_folder(chosen);
    }
    return true;
}

void frmReports::cmdSave_Click() {
    const std::string name = report_file_name(shared().dirs, setup_.download_mode);
    if (!name.empty()) {
        bool copied;
        {
            const WaitCursor busy;
            copied = copy_file_whole(tempfile_path(shared().dirs.save_dir), name);
        }
        if (!copied) {
            // Nothing is lost: the received text stays in tempfile.dat and
            // the form stays open for another try.
            tell(tempfile_bad_name);
            return;
        }
    }
    forms::unload<frmReports>();
}
