// The serial port test as a user runs it: the main window starts on a real
// serial line to the simulated analyser, the test form asks for the pattern
// and shows it as it arrives.

#include <QtTest>

#include <sys/resource.h>

#include <QPlainTextEdit>

#include "app/form_registry.h"
#include "link/frmTestPort.h"
#include "support/console_e2e.h"

using namespace kyt;
using namespace kyt::test;

namespace {

const QString pattern = "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789\nabcdefghijklmnopqrstuvwxyz  !#()-_=:.";

QString shown(frmTestPort* form) { return child<QPlainTextEdit>(form, "txtData")->toPlainText(); }

double cpu_seconds() {
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

}  // namespace

class tst_test_port_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }

    void cleanup() { close_console(); }

    void pattern_arrives_whole_data() {
        QTest::addColumn<QStringList>("faults");
        QTest::newRow("clean line") << QStringList{};
        QTest::newRow("replies in pieces") << QStringList{"--split"};
    }
    // On the console's default Comm 2, from the main window's menu.
    void pattern_arrives_whole() {
        QFETCH(QStringList, faults);
        SimConsole c(faults, 2);
        QVERIFY(c.sim.ready());
        QVERIFY(services().serial->port_open());
        forms::loaded<frmMain>()->findChild<QAction*>("mnuTestPort")->trigger();
        auto* form = forms::loaded<frmTestPort>();
        QVERIFY(form && form->isVisible());
        QTest::mouseClick(child<QPushButton>(form, "Command1"), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        QCOMPARE(shown(form), pattern);
        // A second press clears the box and starts afresh. The line end that
        // followed the full stop last time waits in the port and comes first now.
        QTest::mouseClick(child<QPushButton>(form, "Command1"), Qt::LeftButton);
        QVERIFY(form->GetDataTimer.isActive());
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        QCOMPARE(shown(form).trimmed(), pattern);
    }

    void a_vanished_analyser_is_told() {
        SimConsole c({"--hangup-after", "1"});
        QVERIFY(c.sim.ready());
        auto* form = forms::get<frmTestPort>();
        // The pattern arrives, then the line goes: that is told once, and a
        // second test on the closed port is told that the port is closed.
        c.t.boxes->expect(2);
        form->Command1_Click();
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(c.t.boxes->shown.size(), std::size_t(1), 10000);
        QVERIFY(shown(form).startsWith(pattern));  // nothing sent before it went is lost
        QVERIFY(!services().serial->port_open());
        form->Command1_Click();
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(2));
        QCOMPARE(c.t.boxes->shown.back().style, box_critical);
        QVERIFY(!form->GetDataTimer.isActive());
    }

    // The analyser goes away while the port is open and nothing reads it:
    // the console notices at once, closes the port, says so once and then
    // sits idle instead of polling a dead line.
    void a_vanished_analyser_leaves_the_console_idle() {
        SimConsole c(QStringList{});
        QVERIFY(c.sim.ready() && services().serial->port_open());
        c.t.boxes->expect();
        c.sim.stop();
        const double before = cpu_seconds();
        QTest::qWait(10000);
        const double used = cpu_seconds() - before;
        qInfo("%.3f s of CPU in the 10 s after the hang-up", used);
        QVERIFY2(used < 0.2, qPrintable(QString("%1 s of CPU in 10 s").arg(used)));
        QVERIFY(!services().serial->port_open());
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(c.t.boxes->shown[0].style, box_critical);
    }
};

QTEST_MAIN(tst_test_port_e2e)
#include "tst_test_port_e2e.moc"
