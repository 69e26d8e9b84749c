// The serial port test as a user runs it: the main window starts on a real
// serial line whose Comm 2 is the simulated analyser, the test form asks for
// the pattern and shows it as it arrives.

#include <QtTest>

#include <sys/resource.h>

#include <QPlainTextEdit>
#include <QPushButton>

#include "app/form_registry.h"
#include "app/frmMain.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "link/frmTestPort.h"
#include "link/qt_serial_line.h"
#include "support/analyser_sim.h"
#include "support/test_services.h"

using namespace kyt;

class tst_test_port_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }

    void cleanup() {
        forms::unload<frmTestPort>();
        forms::unload<frmMain>();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        services().serial.reset();
    }

    void pattern_arrives_whole_data() {
        QTest::addColumn<QStringList>("faults");
        QTest::newRow("clean line") << QStringList{};
        QTest::newRow("replies in pieces") << QStringList{"--split"};
    }
    void pattern_arrives_whole() {
        QFETCH(QStringList, faults);
        test::Sim sim(faults);
        QVERIFY(sim.ready());
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Ports", "comm1", "/nonexistent/kyt-comm1");
        t.settings->save_setting("kyt", "Ports", "comm2", ss(sim.link));
        t.settings->save_setting("kyt", "Ports", "comm3", "/nonexistent/kyt-comm3");
        t.settings->save_setting("kyt", "Ports", "comm4", "/nonexistent/kyt-comm4");
        services().serial = std::make_unique<QtSerialLine>(*t.settings);

        frmMain* main_window = forms::get<frmMain>();
        QVERIFY(t.boxes->shown.empty());
        QVERIFY(services().serial->port_open());
        main_window->findChild<QAction*>("mnuTestPort")->trigger();
        auto* form = forms::loaded<frmTestPort>();
        QVERIFY(form && form->isVisible());
        auto* box = form->findChild<QPlainTextEdit*>("txtData");

        QTest::mouseClick(form->findChild<QPushButton*>("Command1"), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        QCOMPARE(box->toPlainText(),
                 QString("ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789\nabcdefghijklmnopqrstuvwxyz  !#()-_=:."));

        // A second press clears the box and starts afresh.
        QTest::mouseClick(form->findChild<QPushButton*>("Command1"), Qt::LeftButton);
        QVERIFY(form->GetDataTimer.isActive());
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        // The line end that followed the full stop last time waits in the
        // port and comes first now.
        QCOMPARE(box->toPlainText().trimmed(),
                 QString("ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789\nabcdefghijklmnopqrstuvwxyz  !#()-_=:."));
    }

    void a_vanished_analyser_is_told() {
        test::Sim sim({"--hangup-after", "1"});
        QVERIFY(sim.ready());
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Ports", "comm1", ss(sim.link));
        for (const char* key : {"comm2", "comm3", "comm4"})
            t.settings->save_setting("kyt", "Ports", key, "/nonexistent/kyt-port");
        t.settings->save_setting("kyt", "Startup", "comm", "1");
        services().serial = std::make_unique<QtSerialLine>(*t.settings);
        forms::get<frmMain>();
        auto* form = forms::get<frmTestPort>();
        // The pattern arrives, then the line goes: that is told once, and a
        // second test on the closed port is told that the port is closed.
        t.boxes->expect(2);
        form->Command1_Click();
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(t.boxes->shown.size(), std::size_t(1), 10000);
        // Nothing the analyser sent before it went is lost.
        QVERIFY(form->findChild<QPlainTextEdit*>("txtData")->toPlainText().startsWith(
            "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789\nabcdefghijklmnopqrstuvwxyz  !#()-_=:."));
        QVERIFY(!services().serial->port_open());
        form->Command1_Click();
        QCOMPARE(t.boxes->shown.size(), std::size_t(2));
        QCOMPARE(t.boxes->shown.back().style, 16);
        QVERIFY(!form->GetDataTimer.isActive());
    }

    // The analyser goes away while the port is open and nothing reads it:
    // the console notices at once, closes the port, says so once and then
    // sits idle instead of polling a dead line.
    void a_vanished_analyser_leaves_the_console_idle() {
        auto sim = std::make_unique<test::Sim>(QStringList{});
        QVERIFY(sim->ready());
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Ports", "comm1", ss(sim->link));
        for (const char* key : {"comm2", "comm3", "comm4"})
            t.settings->save_setting("kyt", "Ports", key, "/nonexistent/kyt-port");
        t.settings->save_setting("kyt", "Startup", "comm", "1");
        services().serial = std::make_unique<QtSerialLine>(*t.settings);
        forms::get<frmMain>();
        QVERIFY(services().serial->port_open());
        t.boxes->expect(answer_ok);

        sim.reset();
        const double before = cpu_seconds();
        QTest::qWait(10000);
        const double used = cpu_seconds() - before;
        qInfo("%.3f s of CPU in the 10 s after the hang-up", used);
        QVERIFY2(used < 0.2, qPrintable(QString("%1 s of CPU in 10 s").arg(used)));
        QVERIFY(!services().serial->port_open());
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(t.boxes->shown[0].style, box_critical);
    }

private:
    static double cpu_seconds() {
        rusage u{};
        getrusage(RUSAGE_SELF, &u);
        return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
    }
};

QTEST_MAIN(tst_test_port_e2e)
#include "tst_test_port_e2e.moc"
