#include <QtTest>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "app/frmMain.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "link/frmChangePort.h"
#include "link/global_comm.h"
#include "link/qt_serial_line.h"
#include "support/memory_settings_store.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

void flush_deletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

QRadioButton* option(QWidget* f, int n) { return f->findChild<QRadioButton*>(QString("optComm%1").arg(n)); }

}  // namespace

class tst_comm_ports : public QObject {
    Q_OBJECT
private slots:
    void cleanup() {
        forms::unload<frmChangePort>();
        forms::unload<frmMain>();
        flush_deletes();
    }

    void buffer_discipline() {
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        t.serial->ops.clear();
        reset_comm_buffers();
        QCOMPARE(t.serial->ops, (std::vector<std::string>{"clear output", "clear input", "rthreshold 1", "input length 0"}));
        t.serial->set_input_len(1);
        t.serial->feed("abc");
        // With one character a read, a later piece replaces an earlier one.
        QCOMPARE(flush_comm_input(), std::string("c"));
        QCOMPARE(flush_comm_input(), std::string());
    }

    // Comm n without a [Ports] entry is /dev/ttyS<n-1>; a command is with the
    // system when output() returns, since the console then busy-waits for the
    // reply without running the event loop that would write it.
    void qt_serial_line_names_and_writes() {
        MemorySettingsStore store;
        QtSerialLine line(store);
        QCOMPARE(line.device_name(1), std::string("/dev/ttyS0"));
        QCOMPARE(line.device_name(4), std::string("/dev/ttyS3"));
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
        store.save_setting("kyt", "Ports", "comm2", ptsname(master));
        line.set_port_number(2);
        line.set_port_open(true);
        line.output("RTA1\r");
        pollfd p{master, POLLIN, 0};
        char got[16] = {};
        const bool waiting = poll(&p, 1, 0) == 1;
        const auto n = waiting ? read(master, got, sizeof got) : 0;
        line.set_port_open(false);
        close(master);
        QVERIFY(waiting);
        QCOMPARE(std::string(got, std::size_t(n)), std::string("RTA1\r"));
    }

    void stop_sends_st_between_two_waits() {
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        shared().port.channel = 'C';
        t.serial->feed("stale");
        t.serial->reply_next("x\r");
        t.serial->ops.clear();
        const long before = t.clock->readings();
        stop_current_test();
        QCOMPARE(t.serial->commands, std::vector<std::string>{"STC\r"});
        QCOMPARE(t.serial->ops.front(), std::string("clear output"));
        QCOMPARE(t.serial->in_buffer_count(), 0);  // the reply was read and dropped
        // Two waits of a second each on a clock that moves a quarter second a reading.
        QVERIFY(t.clock->readings() - before >= 10);
    }

    void stop_on_a_closed_port_tells_and_goes_on() {
        auto t = test::install_test_services();
        t.boxes->expect();
        stop_current_test();
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(t.boxes->shown[0].style, 16);
    }

    void reply_errors_data() {
        QTest::addColumn<QString>("buffer");
        QTest::addColumn<QString>("text");
        QTest::newRow("?") << "?\r" << "Unsuccessful transmission, check all hardware connections and try again.";
        QTest::newRow("e") << "e\r" << "Test or Autosequence is not running";
        QTest::newRow("n") << "n\r" << "Current channel selected is not connected.";
        QTest::newRow("three long") << "e\r\n" << "";
    }
    void reply_errors() {
        QFETCH(QString, buffer);
        QFETCH(QString, text);
        auto t = test::install_test_services();
        if (!text.isEmpty()) t.boxes->expect();
        shared().port.comm_buffer = ss(buffer);
        show_reply_error();
        QStringList shown;
        for (const auto& b : t.boxes->shown) shown << qs(b.title + ": " + b.text);
        QCOMPARE(shown, text.isEmpty() ? QStringList{} : QStringList{"ERROR: " + text});
    }

    void change_port_options_data() {
        QTest::addColumn<int>("port");
        QTest::addColumn<QList<int>>("failing");
        QTest::addColumn<QList<bool>>("enabled");
        QTest::newRow("port 3 not free stays checked but disabled")
            << 3 << QList<int>{2, 3, 4} << QList<bool>{true, false, false, false};
        QTest::newRow("port 1 and 4 failed") << 2 << QList<int>{1, 4} << QList<bool>{false, true, true, false};
    }
    void change_port_options() {
        QFETCH(int, port);
        QFETCH(QList<int>, failing);
        QFETCH(QList<bool>, enabled);
        auto t = test::install_test_services();
        t.settings->save_setting("kyt", "Startup", "comm", std::to_string(port));
        for (int p : failing) t.serial->failing.insert(p);
        forms::get<frmMain>();
        auto* f = forms::get<frmChangePort>();
        f->show();
        for (int n = 1; n <= 4; ++n) {
            QCOMPARE(option(f, n)->isChecked(), n == port);
            QCOMPARE(option(f, n)->isEnabled(), enabled[n - 1]);
            QCOMPARE(option(f, n)->toolTip(), QString("fake%1").arg(n));
        }
        QCOMPARE(f->findChild<QLabel*>("lblDevice2")->text(), QString("fake2"));
    }

    // Update takes the choice: stored, in the title, the port reopened;
    // Cancel changes nothing. Both unload the form.
    void leaving_the_form_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("port");
        QTest::newRow("update") << "cmdUpdate" << 4;
        QTest::newRow("cancel") << "cmdCancel" << 2;
    }
    void leaving_the_form() {
        QFETCH(QString, button);
        QFETCH(int, port);
        auto t = test::install_test_services();
        forms::get<frmMain>();
        auto* f = forms::get<frmChangePort>();
        f->show();
        t.serial->ops.clear();
        QTest::mouseClick(option(f, 4), Qt::LeftButton);
        QVERIFY(option(f, 4)->isChecked());
        QTest::mouseClick(f->findChild<QPushButton*>(button), Qt::LeftButton);
        QCOMPARE(shared().port.comm_port, port);
        QCOMPARE(t.settings->get_setting("KYT", "STARTUP", "comm", "-"), std::string(port == 4 ? "4" : "-"));
        QCOMPARE(forms::loaded<frmMain>()->windowTitle(), QString("KYT CONSOLE  -  Comm %1").arg(port));
        QCOMPARE(t.serial->port_number(), port);
        const auto& ops = t.serial->ops;
        QCOMPARE(!ops.empty() && ops.front() == "close" && ops.back() == "open", port == 4);
        QVERIFY(!forms::is_loaded<frmChangePort>());
    }
};

QTEST_MAIN(tst_comm_ports)
#include "tst_comm_ports.moc"
