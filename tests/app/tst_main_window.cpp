#include <QtTest>

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>

#include "app/frmMain.h"
#include "common/form_roles.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

// A stand-in for a form that a later part of the console builds, in the
// roles the main window hands work to.
class StandInForm : public QWidget, public LiveTestScreen, public ReportScreen {
public:
    StandInForm() { resize(300, 200); }
    void start_polling() override { polling = true; }
    void show_as_capture_panel() override {
        capture_panel = true;
        show();
    }
    bool is_capture_panel() const override { return capture_panel; }
    void show_as_editor() override { show(); }
    void disable_print() override {}
    bool polling = false;
    bool capture_panel = false;
};

using test::flush_deletes;

void stand_in(std::initializer_list<const char*> names) {
    for (const char* f : names) forms::register_factory(f, [] { return new StandInForm; });
}

frmMain* fresh_main() {
    forms::unload<frmMain>();
    for (const QString& n : forms::closing_list()) forms::unload(n);
    forms::unload("frmSysAd");
    flush_deletes();
    return forms::get<frmMain>();
}

QStringList menu_captions(QMenu* m) {
    QStringList out;
    // A separator shows as "---" and its text, if it carried any.
    for (QAction* a : m->actions()) out << (a->isSeparator() ? "---" + a->text() : a->text());
    return out;
}

}  // namespace

class tst_main_window : public QObject {
    Q_OBJECT
private slots:
    // The menus as stored; an entry whose form this build does not hold is off.
    void menu_tree_as_stored() {
        test::install_test_services();
        stand_in({"frmChangePort"});
        frmMain* m = fresh_main();
        QStringList tops;
        for (QAction* a : m->findChild<QMenuBar*>()->actions()) tops << a->text();
        QCOMPARE(tops, (QStringList{"&File", "&Options", "&Help"}));
        QCOMPARE(menu_captions(m->findChild<QMenu*>("mnuFile")),
                 (QStringList{"&Download", "&Edit Summary or Data Log", "&Graph Data Log", "---", "E&xit Kyt Console"}));
        QCOMPARE(menu_captions(m->findChild<QMenu*>("mnuOptions")),
                 (QStringList{"&Change Comm Port", "&Test Serial Port", "&System Administrator"}));
        QCOMPARE(menu_captions(m->findChild<QMenu*>("mnuHelp")), (QStringList{"KYT Help", "---", "&About"}));
        QVERIFY(m->findChild<QAction*>("mnuCommPort")->isEnabled());
        QVERIFY(!m->findChild<QAction*>("mnuGraphLog")->isEnabled());
        QVERIFY(m->findChild<QAction*>("mnuExit")->isEnabled());
    }

    // However large the window, the status line stays one line high along
    // the bottom edge and the backdrop takes the rest.
    void status_line_stays_at_the_bottom() {
        test::install_test_services();
        frmMain* m = fresh_main();
        m->resize(1600, 1000);
        m->show();
        QVERIFY(QTest::qWaitForWindowExposed(m));
        QWidget* area = m->centralWidget();
        auto* status = m->findChild<QWidget*>("picStatus");
        auto* backdrop = m->findChild<QWidget*>("imgBackdrop");
        QVERIFY(area->height() > 800);
        QVERIFY2(status->height() < 2 * m->findChild<QLabel*>("lblStatus")->fontMetrics().height() + 8,
                 qPrintable(QString::number(status->height())));
        QCOMPARE(status->geometry().bottom(), area->height() - 1);
        QCOMPARE(backdrop->height() + status->height(), area->height());
        m->hide();
    }

    // The port stored (Comm 2 without one) in the captions; one that cannot
    // be used is told, and with no port free the port menus are off.
    void start_up_on_the_stored_port_data() {
        QTest::addColumn<QList<int>>("failing");
        QTest::addColumn<QString>("comm");  // as stored; empty: none
        QTest::addColumn<int>("port");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<bool>("menus_enabled");
        QTest::addColumn<bool>("open");
        const QString none = "Sorry no comm ports available\r\rIf you wish to use a comm port with KYT, please close any "
                             "other\rprograms that are using comm ports and restart KYT.";
        const QString bad = "Current selected Comm port is not functioning properly.\r\rYou may goto configuration "
                            "to change comm ports settings.";
        QTest::newRow("none stored, all free") << QList<int>{} << "" << 2 << QStringList{} << true << true;
        QTest::newRow("port 3 chosen, only 1 free")
            << QList<int>{2, 3, 4} << "3" << 3 << QStringList{bad} << true << false;
        QTest::newRow("no port free: one box, the open is silent")
            << QList<int>{1, 2, 3, 4} << "2" << 2 << QStringList{none} << false << false;
        QTest::newRow("port 0 from a bad setting") << QList<int>{0} << "x" << 0 << QStringList{bad} << true << false;
    }
    void start_up_on_the_stored_port() {
        QFETCH(QList<int>, failing);
        QFETCH(QString, comm);
        QFETCH(int, port);
        QFETCH(QStringList, boxes);
        QFETCH(bool, menus_enabled);
        QFETCH(bool, open);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(boxes.size()));
        for (int p : failing) t.serial->failing.insert(p);
        if (!comm.isEmpty()) t.settings->save_setting("kyt", "Startup", "comm", comm.toStdString());
        stand_in({"frmDownload", "frmTestPort", "frmChangePort"});
        frmMain* m = fresh_main();
        QStringList shown;
        for (const auto& b : t.boxes->shown) {
            shown << QString::fromStdString(b.text);
            QCOMPARE(b.style, 16);
            QCOMPARE(b.title, std::string("ERROR"));
        }
        QCOMPARE(shown, boxes);
        for (const char* name : {"mnuCommPort", "mnuDownload", "mnuTestPort"})
            QCOMPARE(m->findChild<QAction*>(name)->isEnabled(), menus_enabled);
        QCOMPARE(t.serial->port_open(), open);
        QCOMPARE(m->findChild<QLabel*>("lblStatus")->text(), QString("Comm Port:  %1").arg(port));
        QCOMPARE(m->windowTitle(), QString("KYT CONSOLE  -  Comm %1").arg(port));
    }

    void start_up_tells_settings_it_cannot_write() {
        auto t = test::install_test_services();
        QTemporaryDir dir;
        QFile blocker(dir.path() + "/blocked");
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        services().settings = std::make_unique<IniSettingsStore>(dir.path() + "/blocked/kyt-console");
        t.boxes->expect();
        frmMain* m = fresh_main();
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(t.boxes->shown[0].style, 16);
        QVERIFY(t.boxes->shown[0].text.find("could not be written") != std::string::npos);
        // The console goes on with the settings it read.
        QCOMPARE(m->windowTitle(), QString("KYT CONSOLE  -  Comm 2"));
    }

    void start_up_scans_then_opens_the_chosen_port() {
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "comm", "3");
        fresh_main();
        const std::vector<std::string> expected = {
            "port 1", "open", "close", "port 2", "open", "close", "port 3", "open", "close", "port 4", "open",
            "close", "port 3", "settings 9600,N,8,1", "clear input", "clear output", "rts", "open"};
        QCOMPARE(t.serial->ops, expected);
    }

    void exit_asks_and_removes_the_capture_file_on_yes_only_data() {
        QTest::addColumn<bool>("unsaved");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("quits");
        const QString plain = "Are you sure want to quit KYT?";
        const QString unsaved = "You have not saved your changes to file.\rAre you sure you want to quit KYT?";
        QTest::newRow("yes") << false << int(answer_yes) << plain << 292 << true;
        QTest::newRow("unsaved, no") << true << int(answer_no) << unsaved << 276 << false;
    }
    void exit_asks_and_removes_the_capture_file_on_yes_only() {
        QFETCH(bool, unsaved);
        QFETCH(int, answer);
        QFETCH(QString, text);
        QFETCH(int, style);
        QFETCH(bool, quits);
        auto t = test::install_test_services();
        QTemporaryDir work;
        t.settings->save_setting("kyt", "Startup", "savedir", ss(work.path()));
        frmMain* m = fresh_main();
        shared().run.changes_unsaved = unsaved;
        const QString temp = work.path() + "/tempfile.dat";
        QFile f(temp);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("captured");
        f.close();
        t.boxes->shown.clear();
        t.boxes->answer(answer);
        QCOMPARE(m->exit_kyt(), quits);
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        test::expect_box(t.boxes->shown[0], ss(text), style, "EXIT KYT CONSOLE");
        QCOMPARE(QFile::exists(temp), !quits);
    }

    void exit_then_no_leaves_the_bare_main_window() {
        auto t = test::install_test_services();
        stand_in({"frmTestPort", "frmAbout", "frmChangePort"});
        forms::register_factory("frmSysAd", [] { return new StandInForm; }, forms::AtExit::stay);
        frmMain* m = fresh_main();
        m->show();
        for (const char* f : {"frmTestPort", "frmAbout", "frmChangePort", "frmSysAd"}) forms::get(f)->show();
        t.boxes->answer(answer_no);
        m->findChild<QAction*>("mnuExit")->trigger();
        flush_deletes();
        QVERIFY(forms::is_loaded<frmMain>());
        QVERIFY(m->isVisible());
        for (const char* f : {"frmTestPort", "frmAbout", "frmChangePort"}) QVERIFY2(!forms::find(f), f);
        // The administrator's form is not on the closing list.
        QVERIFY(forms::find("frmSysAd"));
    }

    // The pending test screen comes up polling, and comes back at each
    // activation while its flag stays set; the report screen goes.
    void each_activation_during_a_test_repeats_the_hand_over() {
        test::install_test_services();
        stand_in({"frmRTGraph", "frmReports"});
        frmMain* m = fresh_main();
        shared().run.rt_pending = true;
        m->Form_Activate();
        QWidget* graph = forms::find("frmRTGraph");
        QVERIFY(graph && graph->isVisible() && static_cast<StandInForm*>(graph)->polling);
        const QPoint centred = graph->pos();
        graph->move(0, 0);
        forms::get("frmReports")->show();
        // An activation event, as a click on the main window gives, repeats it.
        QEvent activate(QEvent::WindowActivate);
        QApplication::sendEvent(m, &activate);
        flush_deletes();
        // Centred again (the frame may differ by a pixel or two once shown).
        QVERIFY((graph->pos() - centred).manhattanLength() < 10);
        QVERIFY(!forms::find("frmReports"));
        QCOMPARE(forms::find("frmRTGraph"), graph);
        QVERIFY(shared().run.rt_pending);
    }
};

QTEST_MAIN(tst_main_window)
#include "tst_main_window.moc"
