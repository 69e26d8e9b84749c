#include <QtTest>

#include <QAction>
#include <QLabel>

#include "app/frmMain.h"
#include "common/form_roles.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;
using test::flush_deletes;

namespace {

// A stand-in for a form in the roles the main window hands work to.
class StandInForm : public QWidget, public LiveTestScreen, public ReportScreen {
public:
    StandInForm() { resize(300, 200); }
    void start_polling() override { polling = true; }
    void show_as_capture_panel() override { capture_panel = true, show(); }
    bool is_capture_panel() const override { return capture_panel; }
    void show_as_editor() override { show(); }
    void disable_print() override {}
    bool polling = false, capture_panel = false;
};

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

bool enabled(frmMain* m, const char* action) { return m->findChild<QAction*>(action)->isEnabled(); }

}  // namespace

class tst_main_window : public QObject {
    Q_OBJECT
private slots:
    // An entry whose form this build does not hold is off.
    void menu_entry_without_its_form_is_off() {
        test::install_test_services();
        stand_in({"frmChangePort"});
        frmMain* m = fresh_main();
        QVERIFY(enabled(m, "mnuCommPort"));
        QVERIFY(!enabled(m, "mnuGraphLog"));
    }

    // The port stored (Comm 2 without one) in the captions; one that cannot
    // be used is told, and with no port free the port menus are off.
    void start_up_on_the_stored_port_data() {
        QTest::addColumn<QList<int>>("failing");
        QTest::addColumn<QString>("comm");  // as stored; empty: none
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("box");
        QTest::addColumn<bool>("menus_enabled");
        const QString none = "Sorry no comm ports available\r\rIf you wish to use a comm port with KYT, please close any "
                             "other\rprograms that are using comm ports and restart KYT.";
        const QString bad = "Current selected Comm port is not functioning properly.\r\rYou may goto configuration "
                            "to change comm ports settings.";
        QTest::newRow("none stored, all free") << QList<int>{} << "" << 2 << "" << true;
        QTest::newRow("port 3 chosen, only 1 free") << QList<int>{2, 3, 4} << "3" << 3 << bad << true;
        QTest::newRow("no port free: one box, the open is silent") << QList<int>{1, 2, 3, 4} << "2" << 2 << none << false;
        QTest::newRow("port 0 from a bad setting") << QList<int>{0} << "x" << 0 << bad << true;
    }
    void start_up_on_the_stored_port() {
        QFETCH(QList<int>, failing);
        QFETCH(QString, comm);
        QFETCH(int, port);
        QFETCH(QString, box);
        QFETCH(bool, menus_enabled);
        auto t = test::install_test_services();
        t.boxes->expect(box.isEmpty() ? 0 : 1);
        for (int p : failing) t.serial->failing.insert(p);
        if (!comm.isEmpty()) t.settings->save_setting("kyt", "Startup", "comm", comm.toStdString());
        stand_in({"frmDownload", "frmTestPort", "frmChangePort"});
        frmMain* m = fresh_main();
        QCOMPARE(t.boxes->shown.size(), std::size_t(box.isEmpty() ? 0 : 1));
        if (!box.isEmpty()) test::expect_box(t.boxes->shown[0], ss(box), 16, "ERROR");
        for (const char* name : {"mnuCommPort", "mnuDownload", "mnuTestPort"}) QCOMPARE(enabled(m, name), menus_enabled);
        QCOMPARE(t.serial->port_open(), box.isEmpty());
        QCOMPARE(m->findChild<QLabel*>("lblStatus")->text(), QString("Comm Port:  %1").arg(port));
        QCOMPARE(m->windowTitle(), QString("KYT CONSOLE  -  Comm %1").arg(port));
    }

    void exit_asks_and_removes_the_capture_file_on_yes_only_data() {
        QTest::addColumn<bool>("unsaved");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("style");
        QTest::newRow("yes") << false << int(answer_yes) << "Are you sure want to quit KYT?" << 292;
        QTest::newRow("unsaved, no")
            << true << int(answer_no) << "You have not saved your changes to file.\rAre you sure you want to quit KYT?"
            << 276;
    }
    void exit_asks_and_removes_the_capture_file_on_yes_only() {
        QFETCH(bool, unsaved);
        QFETCH(int, answer);
        QFETCH(QString, text);
        QFETCH(int, style);
        auto t = test::install_test_services();
        QTemporaryDir work;
        t.settings->save_setting("kyt", "Startup", "savedir", ss(work.path()));
        frmMain* m = fresh_main();
        shared().run.changes_unsaved = unsaved;
        QFile temp(work.path() + "/tempfile.dat");
        QVERIFY(temp.open(QIODevice::WriteOnly) && temp.write("captured") == 8);
        temp.close();
        t.boxes->shown.clear();
        t.boxes->answer(answer);
        QCOMPARE(m->exit_kyt(), answer == answer_yes);
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        test::expect_box(t.boxes->shown[0], ss(text), style, "EXIT KYT CONSOLE");
        QCOMPARE(temp.exists(), answer != answer_yes);
    }

    // No to Exit still closes the forms on the closing list (not the administrator's).
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
        QVERIFY(forms::is_loaded<frmMain>() && m->isVisible());
        for (const char* f : {"frmTestPort", "frmAbout", "frmChangePort"}) QVERIFY2(!forms::find(f), f);
        QVERIFY(forms::find("frmSysAd"));
    }

    // The pending test screen comes up polling and comes back, centred, at
    // each activation while its flag stays set; the report screen goes.
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
        QEvent activate(QEvent::WindowActivate);
        QApplication::sendEvent(m, &activate);
        flush_deletes();
        QVERIFY((graph->pos() - centred).manhattanLength() < 10);  // the frame may differ by a pixel or two
        QVERIFY(!forms::find("frmReports"));
        QCOMPARE(forms::find("frmRTGraph"), graph);
    }
};

QTEST_MAIN(tst_main_window)
#include "tst_main_window.moc"
