// The serial port test from the main window against the simulated analyser.

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

    // On the default Comm 2, replies split; a second press starts afresh.
    void pattern_arrives_whole() {
        SimConsole c({"--split"}, 2);
        QVERIFY(c.sim.ready());
        forms::loaded<frmMain>()->findChild<QAction*>("mnuTestPort")->trigger();
        auto* form = forms::loaded<frmTestPort>();
        QVERIFY(form && form->isVisible());
        for (int press = 0; press < 2; ++press) {
            QTest::mouseClick(child<QPushButton>(form, "Command1"), Qt::LeftButton);
            QVERIFY(form->GetDataTimer.isActive());
            QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
            QCOMPARE(press ? shown(form).trimmed() : shown(form), pattern);
        }
    }

    // The line gone after the pattern: nothing it sent is lost, the loss told once.
    void a_vanished_analyser_is_told() {
        SimConsole c({"--hangup-after", "1"});
        QVERIFY(c.sim.ready());
        auto* form = forms::get<frmTestPort>();
        c.t.boxes->expect(2);
        form->Command1_Click();
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(c.t.boxes->shown.size(), std::size_t(1), 10000);
        QVERIFY(shown(form).startsWith(pattern));
        QVERIFY(!services().serial->port_open());
        form->Command1_Click();
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(2));
        QCOMPARE(c.t.boxes->shown.back().style, box_critical);
        QVERIFY(!form->GetDataTimer.isActive());
    }

    // The device gone while nothing reads: told once, then no CPU spent on the dead line (a fault once found).
    void a_vanished_analyser_leaves_the_console_idle() {
        SimConsole c(QStringList{});
        QVERIFY(c.sim.ready() && services().serial->port_open());
        c.t.boxes->expect();
        c.sim.stop();
        const double before = cpu_seconds();
        QTest::qWait(10000);
        const double used = cpu_seconds() - before;
        QVERIFY2(used < 0.2, qPrintable(QString("%1 s of CPU in 10 s").arg(used)));
        QVERIFY(!services().serial->port_open());
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(c.t.boxes->shown[0].style, box_critical);
    }
};

QTEST_MAIN(tst_test_port_e2e)
#include "tst_test_port_e2e.moc"
