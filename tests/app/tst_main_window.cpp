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

void flush_deletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

frmMain* fresh_main() {
    forms::unload<frmMain>();
    for (const QString& n : forms::closing_list()) forms::unload(n);
    forms::unload("frmSysAd");
    flush_deletes();
    return forms::get<frmMain>();
}

QStringList menu_captions(QMenu* m) {
    QStringList out;
    for (QAction* a : m->actions()) out << (a->isSeparator() ? "-" : a->text());
    return out;
}

}  // namespace

class tst_main_window : public QObject {
    Q_OBJECT
private slots:
    void menu_tree_as_stored() {
        test::install_test_services();
        frmMain* m = fresh_main();
        auto* bar = m->findChild<QMenuBar*>();
        QStringList tops;
        for (QAction* a : bar->actions()) tops << a->text();
        QCOMPARE(tops, (QStringList{"&File", "&Options", "&Help"}));
        QCOMPARE(menu_captions(m->findChild<QMenu*>("mnuFile")),
                 (QStringList{"&Download", "&Edit Summary or Data Log", "&Graph Data Log", "-", "E&xit Kyt Console"}));
        QCOMPARE(menu_captions(m->findChild<QMenu*>("mnuOptions")),
                 (QStringList{"&Change Comm Port", "&Test Serial Port", "&System Administrator"}));
        QCOMPARE(menu_captions(m->findChild<QMenu*>("mnuHelp")), (QStringList{"KYT Help", "-", "&About"}));
    }

    // A separator is a line across the menu, with nothing written at its ends.
    void separators_draw_no_text() {
        test::install_test_services();
        frmMain* m = fresh_main();
        for (const char* name : {"mnuFile", "mnuHelp"}) {
            auto* menu = m->findChild<QMenu*>(name);
            menu->popup(QPoint(0, 0));
            QVERIFY(QTest::qWaitForWindowExposed(menu));
            const QImage image = menu->grab().toImage();
            menu->close();
            int separators = 0;
            for (QAction* a : menu->actions()) {
                if (!a->isSeparator()) continue;
                ++separators;
                const QRect r = menu->actionGeometry(a);
                QVERIFY(r.width() > 40 && r.height() > 0);
                int dark = 0;
                for (int y = r.top(); y <= r.bottom(); ++y)
                    for (int x = r.left(); x < r.left() + r.width() / 4; ++x) dark += qGray(image.pixel(x, y)) < 100;
                QVERIFY2(dark == 0, name);
            }
            QCOMPARE(separators, 1);
        }
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

    void menu_entries_follow_the_forms_built() {
        test::install_test_services();
        forms::register_factory("frmChangePort", [] { return new StandInForm; });
        frmMain* m = fresh_main();
        QVERIFY(m->findChild<QAction*>("mnuCommPort")->isEnabled());
        QVERIFY(!m->findChild<QAction*>("mnuGraphLog")->isEnabled());
        QVERIFY(m->findChild<QAction*>("mnuExit")->isEnabled());
    }

    void captions_show_the_port_data() {
        QTest::addColumn<QString>("comm");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("title");
        QTest::newRow("default port") << "" << "Comm Port:  2" << "KYT CONSOLE  -  Comm 2";
        QTest::newRow("stored port 4") << "4" << "Comm Port:  4" << "KYT CONSOLE  -  Comm 4";
    }
    void captions_show_the_port() {
        QFETCH(QString, comm);
        QFETCH(QString, status);
        QFETCH(QString, title);
        auto t = test::install_test_services();
        if (!comm.isEmpty()) t.settings->save_setting("kyt", "Startup", "comm", comm.toStdString());
        frmMain* m = fresh_main();
        QCOMPARE(m->findChild<QLabel*>("lblStatus")->text(), status);
        QCOMPARE(m->windowTitle(), title);
    }

    void start_up_reports_an_unusable_port_data() {
        QTest::addColumn<QList<int>>("failing");
        QTest::addColumn<QString>("comm");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<bool>("menus_enabled");
        QTest::addColumn<bool>("open");
        const QString none = "Sorry no comm ports available\r\rIf you wish to use a comm port with KYT, please close any "
                             "other\rprograms that are using comm ports and restart KYT.";
        const QString bad = "Current selected Comm port is not functioning properly.\r\rYou may goto configuration "
                            "to change comm ports settings.";
        QTest::newRow("all free") << QList<int>{} << "2" << QStringList{} << true << true;
        QTest::newRow("chosen port taken, others free") << QList<int>{2} << "2" << QStringList{bad} << true << false;
        QTest::newRow("port 3 chosen, only 1 free") << QList<int>{2, 3, 4} << "3" << QStringList{bad} << true << false;
        QTest::newRow("no port free: one box, the open is silent")
            << QList<int>{1, 2, 3, 4} << "2" << QStringList{none} << false << false;
        QTest::newRow("port 0 from a bad setting") << QList<int>{0} << "x" << QStringList{bad} << true << false;
    }
    void start_up_reports_an_unusable_port() {
        QFETCH(QList<int>, failing);
        QFETCH(QString, comm);
        QFETCH(QStringList, boxes);
        QFETCH(bool, menus_enabled);
        QFETCH(bool, open);
        auto t = test::install_test_services();
        t.boxes->expect(std::size_t(boxes.size()));
        for (int p : failing) t.serial->failing.insert(p);
        t.settings->save_setting("kyt", "Startup", "comm", comm.toStdString());
        for (const char* f : {"frmDownload", "frmTestPort", "frmChangePort"})
            forms::register_factory(f, [] { return new StandInForm; });
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
        QTest::newRow("no") << false << int(answer_no) << plain << 292 << false;
        QTest::newRow("unsaved, yes") << true << int(answer_yes) << unsaved << 276 << true;
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
        QCOMPARE(QString::fromStdString(t.boxes->shown[0].text), text);
        QCOMPARE(t.boxes->shown[0].style, style);
        QCOMPARE(t.boxes->shown[0].title, std::string("EXIT KYT CONSOLE"));
        QCOMPARE(QFile::exists(temp), !quits);
    }

    void exit_then_no_leaves_the_bare_main_window() {
        auto t = test::install_test_services();
        for (const char* f : {"frmTestPort", "frmAbout", "frmChangePort"})
            forms::register_factory(f, [] { return new StandInForm; });
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

    void activation_hands_over_to_the_pending_form_data() {
        QTest::addColumn<bool>("rt");
        QTest::addColumn<bool>("ot");
        QTest::addColumn<bool>("report");
        QTest::addColumn<QStringList>("loaded");
        QTest::newRow("single rate") << true << false << false << QStringList{"frmRTGraph"};
        QTest::newRow("occlusion") << false << true << false << QStringList{"frmOTGraph"};
        QTest::newRow("both: the second unloads the first") << true << true << false << QStringList{"frmOTGraph"};
        QTest::newRow("capture") << false << false << true << QStringList{"frmReports"};
        QTest::newRow("none") << false << false << false << QStringList{"frmReports"};
    }
    void activation_hands_over_to_the_pending_form() {
        QFETCH(bool, rt);
        QFETCH(bool, ot);
        QFETCH(bool, report);
        QFETCH(QStringList, loaded);
        test::install_test_services();
        for (const char* f : {"frmRTGraph", "frmOTGraph", "frmReports"})
            forms::register_factory(f, [] { return new StandInForm; });
        frmMain* m = fresh_main();
        forms::get("frmReports")->show();
        shared().run.rt_pending = rt;
        shared().run.ot_pending = ot;
        shared().run.report_pending = report;
        if (report) forms::get("frmRTGraph");
        m->Form_Activate();
        flush_deletes();
        QStringList now;
        for (const char* f : {"frmRTGraph", "frmOTGraph", "frmReports"})
            if (forms::find(f)) now << f;
        QCOMPARE(now, loaded);
        for (const QString& f : loaded)
            if (f != "frmReports") {
                QVERIFY(forms::find(f)->isVisible());
                QVERIFY(static_cast<StandInForm*>(forms::find(f))->polling);
            }
        if (auto* r = static_cast<StandInForm*>(forms::find("frmReports"))) QCOMPARE(r->capture_panel, report);
        QCOMPARE(shared().run.capture_begun, report);
        // The flags are left as they were, for the next activation.
        QCOMPARE(shared().run.rt_pending, rt);
        QCOMPARE(shared().run.ot_pending, ot);
    }

    void each_activation_during_a_test_repeats_the_hand_over() {
        test::install_test_services();
        for (const char* f : {"frmRTGraph", "frmReports"}) forms::register_factory(f, [] { return new StandInForm; });
        frmMain* m = fresh_main();
        shared().run.rt_pending = true;
        m->Form_Activate();
        QWidget* graph = forms::find("frmRTGraph");
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
    }
};

QTEST_MAIN(tst_main_window)
#include "tst_main_window.moc"
