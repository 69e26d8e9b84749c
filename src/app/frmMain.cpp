#include "app/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QTimer>

#include "app/backdrop.h"
#include "app/settings/read_ini.h"
#include "app/settings/settings_store.h"
#include "common/form_roles.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/serial_line.h"
#include "reports/capture.h"
#include "ui_frmMain.h"

using namespace kyt;

frmMain::frmMain(QWidget* parent) : QMainWindow(parent), ui(new Ui::frmMain) {
    ui->setupUi(this);
    ui->sep3->setSeparator(true);
    ui->sep4->setSeparator(true);
    ui->imgBackdrop->setPixmap(QPixmap::fromImage(make_backdrop()));
    QPalette pal = ui->imgBackdrop->palette();
    pal.setColor(QPalette::Window, backdrop_surround());
    ui->imgBackdrop->setPalette(pal);

    // A menu entry whose form this build does not hold stays disabled.
    const struct {
        QAction* action;
        const char* form;
    } entries[] = {
        {ui->mnuDownload, "frmDownload"}, {ui->mnuEdit, "frmReports"},     {ui->mnuGraphLog, "frmGraph"},
        {ui->mnuCommPort, "frmChangePort"}, {ui->mnuTestPort, "frmTestPort"}, {ui->mnuSysAdmin, "frmSysAd"},
        {ui->mnuKYTHelp, "frmKYTHelp"},   {ui->mnuAbout, "frmAbout"},
    };
    for (const auto& e : entries) e.action->setEnabled(forms::has_factory(e.form));

    connect(ui->mnuDownload, &QAction::triggered, this, [this] { show_form("frmDownload"); });
    connect(ui->mnuEdit, &QAction::triggered, this, &frmMain::mnuEdit_Click);
    connect(ui->mnuGraphLog, &QAction::triggered, this, [this] { show_form("frmGraph"); });
    connect(ui->mnuExit, &QAction::triggered, this, &frmMain::mnuExit_Click);
    connect(ui->mnuCommPort, &QAction::triggered, this, [this] { show_form("frmChangePort"); });
    connect(ui->mnuTestPort, &QAction::triggered, this, [this] { show_form("frmTestPort"); });
    connect(ui->mnuSysAdmin, &QAction::triggered, this, &frmMain::mnuSysAdmin_Click);
    connect(ui->mnuKYTHelp, &QAction::triggered, this, [this] {
        shared().help_topic = "main";
        show_form("frmKYTHelp");
    });
    connect(ui->mnuAbout, &QAction::triggered, this, [this] { show_form("frmAbout"); });

    forms::remember(forms::name_of<frmMain>(), this);
    Form_Load();
}

frmMain::~frmMain() { delete ui; }

void frmMain::Form_Load() {
    adjustSize();
    center_form(this);
    read_ini();
    update_comm_caption();
    scan_comm_ports();
    // A device that goes away while nothing reads the port is told at once.
    services().serial->set_lost_handler([](const SerialError& e) { tell_serial_error(e); });
    open_comm_port();
}

void frmMain::read_ini() {
    kyt::read_ini(*services().settings, ss_file(QDir::currentPath()), shared());
    save_settings_now();
}

void frmMain::show_comm_port(int port) {
    ui->lblStatus->setText("Comm Port:  " + QString::number(port));
    setWindowTitle("KYT CONSOLE  -  Comm " + QString::number(port));
}

void frmMain::disable_port_menus() {
    ui->mnuCommPort->setEnabled(false);
    ui->mnuDownload->setEnabled(false);
    ui->mnuTestPort->setEnabled(false);
}

bool frmMain::test_port_enabled() const { return ui->mnuTestPort->isEnabled(); }

void frmMain::show_form(const char* name) {
    if (QWidget* f = forms::get(name)) {
        f->show();
        f->raise();
        f->activateWindow();
    }
}

bool frmMain::event(QEvent* e) {
    const bool r = QMainWindow::event(e);
    if (e->type() == QEvent::WindowActivate) Form_Activate();
    return r;
}

// A live test form comes up centred with its poll timer running; the report
// form and the other test form go.
void frmMain::hand_over_to_test(const char* test_form, const char* other_test_form) {
    forms::unload("frmReports");
    forms::unload(other_test_form);
    if (auto* test = forms::get_as<LiveTestScreen>(test_form)) {
        QWidget* f = forms::find(test_form);
        center_form(f);
        f->show();
        if (isEnabled()) test->start_polling();
    }
}

void frmMain::Form_Activate() {
    const RunState& run = shared().run;
    // Each step runs again at every activation while its flag stays set, so
    // that a click on the main window during a test brings the test back.
    if (run.rt_pending) hand_over_to_test("frmRTGraph", "frmOTGraph");
    if (run.ot_pending) hand_over_to_test("frmOTGraph", "frmRTGraph");
    if (run.report_pending) {
        forms::unload("frmRTGraph");
        forms::unload("frmOTGraph");
        if (auto* report = forms::get_as<ReportScreen>("frmReports")) {
            shared().run.capture_begun = true;
            report->show_as_capture_panel();
        }
    }
}

void frmMain::mnuEdit_Click() {
    forms::unload("frmRTGraph");
    forms::unload("frmOTGraph");
    // The capture panel's small layout goes: the editor comes back at its
    // design size.
    if (auto* f = dynamic_cast<ReportScreen*>(forms::find("frmReports")); f && f->is_capture_panel())
        forms::unload("frmReports");
    if (auto* report = forms::get_as<ReportScreen>("frmReports")) report->show_as_editor();
}

void frmMain::mnuSysAdmin_Click() {
    SharedState& s = shared();
    s.password_required = text_to_bool(services().settings->get_setting(kApp, kStartup, "ispasswordrqd", "0"));
    show_form(s.password_required ? "frmPassWord" : "frmSysAd");
}

void frmMain::unload_closing_list() {
    for (const QString& name : forms::closing_list()) forms::unload(name);
}

void frmMain::mnuExit_Click() {
    // Every form goes first, whatever it is doing; only then is the operator
    // asked, so a No leaves the bare main window.
    unload_closing_list();
    close();
}

bool frmMain::exit_kyt() {
    const std::string title = "EXIT KYT CONSOLE";
    int answer;
    if (shared().run.changes_unsaved)
        answer = msg_box("You have not saved your changes to file.\rAre you sure you want to quit KYT?", box_ask_critical, title);
    else
        answer = msg_box("Are you sure want to quit KYT?", box_ask, title);
    if (answer != answer_yes) return false;
    const QString temp = qs_file(tempfile_path(shared().dirs.save_dir));
    if (QFile::exists(temp)) QFile::remove(temp);
    return true;
}

void frmMain::paintEvent(QPaintEvent* e) {
    QMainWindow::paintEvent(e);
    if (quit_after_paint_) QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
}

void frmMain::closeEvent(QCloseEvent* e) {
    if (!exit_kyt()) {
        e->ignore();
        return;
    }
    unload_closing_list();
    e->accept();
    // The program ends with the main window, also when forms that are not on
    // the closing list are still open.
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
}
