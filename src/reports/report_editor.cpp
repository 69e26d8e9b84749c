// The report screen as editor: opening a report file, the edit entries on
// the system clipboard, saving, printing and the conversion to a
// spreadsheet file.

#include <QApplication>
#include <QClipboard>
#include <QTextDocument>

#include <filesystem>

#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "common/file_text.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/printer.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/text.h"
#include "common/wait_cursor.h"
#include "link/global_comm.h"
#include "link/serial_line.h"
#include "reports/capture.h"
#include "reports/csv_convert.h"
#include "reports/frmReports.h"
#include "reports/header_replace.h"
#include "reports/report_file.h"
#include "ui_frmReports.h"

using namespace kyt;

namespace {


// The report's lines as the box shows them: one paragraph a line.
QString editor_form(const std::string& report_text) {
    QString t = qs(report_text);
    t.replace("\r\n", "\n");
    return t;
}

// The name of the file that a report of the download mode is saved under.
std::string* report_name_of_mode(Folders& files, char mode) {
    switch (mode) {
        case '1': return &files.summary_file;
        case '2': return &files.log_file;
        case '4': return &files.receive_file;
        case '5': return &files.edit_file;
        default: return nullptr;
    }
}

}  // namespace

void frmReports::connect_editor() {
    connect(ui->mnuOpen, &QAction::triggered, this, &frmReports::mnuOpen_Click);
    connect(ui->mnuPrint, &QAction::triggered, this, &frmReports::cmdPrint_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmReports::cmdPrint_Click);
    connect(ui->mnuClose, &QAction::triggered, this, &frmReports::mnuClose_Click);
    connect(ui->mnuQuit, &QAction::triggered, this, &frmReports::mnuQuit_Click);
    connect(ui->mnuConvertPrn, &QAction::triggered, this, &frmReports::mnuConvertPrn_Click);
    // The edit entries act on the box's selection and the system clipboard.
    QPlainTextEdit* box = ui->txtData;
    connect(ui->mnuClearAll, &QAction::triggered, box, &QPlainTextEdit::clear);
    connect(ui->mnuCut, &QAction::triggered, box, &QPlainTextEdit::cut);
    connect(ui->mnuCopy, &QAction::triggered, box, &QPlainTextEdit::copy);
    connect(ui->mnuPaste, &QAction::triggered, box,
            [box] { box->insertPlainText(QGuiApplication::clipboard()->text()); });
    connect(ui->mnuDelete, &QAction::triggered, box, [box] { box->textCursor().removeSelectedText(); });
}

void frmReports::enable_editing(bool on) {
    for (QAction* a : {ui->mnuPrint, ui->mnuClearAll, ui->mnuCut, ui->mnuCopy, ui->mnuPaste, ui->mnuDelete,
                       ui->mnuClose, ui->mnuConvertPrn})
        a->setEnabled(on);
}

std::string frmReports::editor_text() const {
    // The raw text keeps every character as typed (a no-break space too);
    // each paragraph is a line, ended by CR LF in the file.
    QString t = ui->txtData->document()->toRawText();
    t.replace(QChar::ParagraphSeparator, "\r\n");
    t.replace(QChar::LineSeparator, "\r\n");
    return ss(t);
}

void frmReports::mnuOpen_Click() {
    SharedState& s = shared();
    s.run.download_mode = '5';
    s.dirs.file_name.clear();
    common_dialog().title = "OPEN EDIT";
    show_open_dialog();
    load_report_file();
    setWindowTitle("REPORT - " + qs_file(s.dirs.file_name));
}

void frmReports::load_report_file() {
    SharedState& s = shared();
    const std::string name = trim(s.dirs.file_name);
    if (name.empty()) {
        tell(open_cancelled);
        return;
    }
    std::error_code ec;
    const auto size = std::filesystem::file_size(name, ec);
    if (!ec && size > report_size_limit) {
        msg_box("The file " + name + " is too large to be a report (" + std::to_string(size >> 20) +
                    " MB); the editor takes reports up to " + std::to_string(report_size_limit >> 20) + " MB.",
                box_exclamation, "BAD FILE NAME");
        return;
    }
    const std::optional<std::string> bytes = read_text_file(name, report_size_limit);
    if (!bytes) {
        tell(bad_open_name);
        return;
    }
    s.header_text = report_text_of_file(*bytes);
    if (!is_report_text(s.header_text)) {
        tell(not_a_report);
        ui->txtData->clear();
        s.dirs.file_name = "file";
        print_source = "none";
        enable_editing(false);
        ui->mnuPrint->setEnabled(true);
        return;
    }
    ui->txtData->setPlainText(editor_form(s.header_text));
    s.run.file_confirmed = true;
    s.run.file_action = 1;
    s.dirs.edit_file = name;
    print_source = name;
    enable_editing(true);
}

bool frmReports::write_report_file() {
    SharedState& s = shared();
    s.dirs.file_name = report_file_name(s.dirs, s.run.download_mode);
    if (s.dirs.file_name.empty()) {
        tell(report_save_cancelled);
        return false;
    }
    // The editor holds the whole report, so its text is the file. It takes
    // the name only once whole: a failure leaves the file as it was.
    std::string why;
    if (!replace_file_whole(s.dirs.file_name, editor_text(), &why)) {
        msg_box("The report could not be saved as " + s.dirs.file_name + " (" + why +
                    "). It stays in the editor.",
                box_critical, "ERROR");
        return false;
    }
    print_source = s.dirs.file_name;
    return true;
}

void frmReports::mnuClose_Click() {
    SharedState& s = shared();
    bool written;
    {
        const WaitCursor busy;
        s.run.report_pending = false;
        GetDataTimer.stop();
        if (services().serial && services().serial->port_open()) stop_current_test();
        written = write_report_file();
    }
    // A file that could not be written keeps the form and its text.
    if (!written && !s.dirs.file_name.empty()) return;
    forms::unload<frmReports>();
    if (QWidget* main_window = forms::find("frmMain")) main_window->show();
}

void frmReports::mnuQuit_Click() {
    shared().run.report_pending = false;
    cmdCancel_Click();
}

// The report in hand is stored the way file_action says: joined to the
// report for a header (append), or written under its name.
void frmReports::save_before_conversion() {
    SharedState& s = shared();
    if (s.run.file_action != 0) {
        write_report_file();
        return;
    }
    const ReportForHeader r = open_report_for_header(editor_text(), s.report_rec,
                                                     s.run.header_wanted ? std::int16_t{-1} : std::int16_t{0},
                                                     s.dirs.file_name);
    s.report_text = r.report_text;
    ui->txtData->setPlainText(editor_form(r.report_text));
    if (r.message) tell(*r.message);
}

void frmReports::save_as() {
    SharedState& s = shared();
    s.run.file_appended = false;
    if (s.run.summary_header_open) {
        common_dialog().title = "SAVE AS";
        const std::string name = show_save_dialog();
        if (std::string* mode_name = report_name_of_mode(s.dirs, s.run.download_mode)) *mode_name = name;
        s.dirs.file_name = name;
        if (s.run.file_action != 2) save_before_conversion();
    }
    s.run.file_confirmed = false;
}

void frmReports::cmdPrint_Click() {
    if (msg_box(print_question.text, print_question.style, print_question.title) == answer_yes) print_screen();
}

void frmReports::print_screen() {
    const WaitCursor busy;
    if (print_source == "none") {
        tell(nothing_to_print);
        return;
    }
    const bool received = print_source == "screen";
    const std::string file = received ? tempfile_path(shared().dirs.save_dir) : print_source;
    const std::string name = received ? "noname.dat" : print_source;
    const std::optional<std::string> text = read_text_file(file);
    if (!text) {
        msg_box("The report file " + file + " could not be read; nothing was printed.", box_critical, "ERROR");
        return;
    }
    Printer& printer = *services().printer;
    printer.set_font_name("courier new");
    // Ten points keep a whole page of a data log (some 62 lines) on one
    // printed page.
    printer.set_font_size(10);
    bool failed = false;
    for (const PrintStep& step : report_print_steps(*text, name)) {
        const bool ok = step.kind == PrintStep::new_page ? printer.new_page() : printer.print_line(step.text);
        if (ok) continue;
        failed = true;
        tell(printer_fault);
    }
    if (!printer.end_job() && !failed) tell(printer_fault);
}

void frmReports::mnuConvertPrn_Click() {
    SharedState& s = shared();
    const RunState& run = s.run;
    if (run.file_confirmed && run.summary_header_open && run.file_action != 2) {
        s.dirs.file_name = report_file_name(s.dirs, run.download_mode);
        save_before_conversion();
    }
    s.dirs.file_name.clear();
    common_dialog().title = std::string(csv_dialog_title);
    const std::string name = show_csv_save_dialog();
    if (name.empty()) {
        tell(csv_cancelled);
        return;
    }
    CsvResult result;
    {
        const WaitCursor busy;
        result = convert_log_to_csv(name);
    }
    tell(result.message());
}
