#include "app/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "app/backdrop.h"
#include "app/settings/read_ini.h"
#include "app/settings/settings_store.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "ui_frmMain.h"

using namespace kyt;

namespace {

// Twips to pixels at the console's design density, 15 twips a pixel.
int tw(int twips) { return twips / 15; }

void start_timer(QWidget* form, const char* name) {
    if (auto* t = form->findChild<QTimer*>(name)) t->start();
}

template <class W>
W* child(QWidget* form, const char* name) {
    return form->findChild<W*>(name);
}

}  // namespace

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

const QStringList& frmMain::closing_list() {
    static const QStringList list = {
        "frmAbout",    "frmChangePort", "frmChgPassword", "frmDownload", "frmKYTGHelp", "frmKYTHelp",
        "frmKYTOverview", "frmGraph",   "frmHeader",      "frmInProgress", "frmOTGraph", "frmPassWord",
        "frmReports",  "frmRTGraph",    "frmSetRate",     "frmSummary",  "frmTestPort", "frmTrumpetGraph",
        "frmTrumpSet",
    };
    return list;
}

void frmMain::Form_Load() {
    adjustSize();
    center_form(this);
    read_ini();
    update_comm_caption();
    scan_comm_ports();
    open_comm_port();
}

void frmMain::read_ini() {
    kyt::read_ini(*services().settings, ss(QDir::currentPath()), shared());
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
    if (QWidget* f = forms::get(test_form)) {
        center_form(f);
        f->show();
        if (isEnabled()) start_timer(f, "GetDataTimer");
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
        if (QWidget* f = forms::get("frmReports")) {
            // The report form becomes a small capture panel.
            if (auto* txt = child<QWidget>(f, "txtData")) {
                txt->setFixedHeight(qRound(1.2 * QFontMetrics(f->font()).height()));
                txt->move(tw(120), tw(120));
            }
            if (auto* b = child<QPushButton>(f, "cmdCancel")) b->move(tw(9000), tw(1030));
            if (auto* b = child<QPushButton>(f, "cmdPrint")) {
                b->move(tw(7440), tw(1030));
                b->setVisible(true);
            }
            if (auto* b = child<QPushButton>(f, "cmdSave")) {
                b->move(tw(5880), tw(1030));
                b->setVisible(true);
            }
            f->resize(f->width(), tw(2100));
            for (const char* m : {"mnuFile", "mnuEdit", "mnuOptions"})
                if (auto* menu = child<QMenu>(f, m)) menu->menuAction()->setVisible(false);
            start_timer(f, "GetDataTimer");
            center_form(f);
            shared().run.capture_begun = true;
            f->show();
        }
    }
}

void frmMain::mnuEdit_Click() {
    forms::unload("frmRTGraph");
    forms::unload("frmOTGraph");
    if (QWidget* f = forms::find("frmReports"); f && f->height() < tw(3000)) forms::unload("frmReports");
    QWidget* f = forms::get("frmReports");
    if (!f) return;
    if (auto* t = f->findChild<QTimer*>("GetDataTimer")) t->stop();
    for (const char* name : {"mnuClose", "mnuClearAll", "mnuCut", "mnuCopy", "mnuPaste", "mnuDelete", "mnuConvertPrn"})
        if (auto* a = f->findChild<QAction*>(name)) a->setEnabled(false);
    f->setWindowTitle("REPORTS");
    center_form(f);
    f->show();
}

void frmMain::mnuSysAdmin_Click() {
    SharedState& s = shared();
    s.password_required = text_to_bool(services().settings->get_setting(kApp, kStartup, "ispasswordrqd", "0"));
    show_form(s.password_required ? "frmPassWord" : "frmSysAd");
}

void frmMain::unload_closing_list() {
    for (const QString& name : closing_list()) forms::unload(name);
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
        answer = msg_box("You have not saved your changes to file.\rAre you sure you want to quit KYT?", 276, title);
    else
        answer = msg_box("Are you sure want to quit KYT?", 292, title);
    if (answer != answer_yes) return false;
    const QString temp = qs(shared().dirs.save_dir) + QDir::separator() + "tempfile.dat";
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
