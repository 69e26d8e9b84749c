#include <QtTest>

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "app/frmMain.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "link/frmChangePort.h"
#include "link/global_comm.h"
#include "link/qt_serial_line.h"
#include "support/pty.h"
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

    void scan_over_real_devices() {
        auto t = test::install_test_services();
        test::Pty first, second;
        QVERIFY(first.ok() && second.ok());
        t.settings->save_setting("kyt", "Ports", "comm1", first.device());
        t.settings->save_setting("kyt", "Ports", "comm2", "/nonexistent/ttyKYT");
        t.settings->save_setting("kyt", "Ports", "comm3", second.device());
        t.settings->save_setting("kyt", "Ports", "comm4", "/dev/null/not-a-device");
        services().serial = std::make_unique<QtSerialLine>(*t.settings);
        scan_comm_ports();
        const std::array<bool, 4> expected{true, false, true, false};
        QCOMPARE(shared().port.comm_ports_free, expected);
        QVERIFY(any_comm_port_free());
        QVERIFY(t.boxes->shown.empty());
        QVERIFY(!services().serial->port_open());

        // The chosen port opens and carries text both ways.
        shared().port.comm_port = 3;
        open_comm_port();
        QVERIFY(t.boxes->shown.empty());
        QVERIFY(services().serial->port_open());
        services().serial->output("GRA\r");
        std::string got;
        QTRY_COMPARE((got += second.read_all(), got), std::string("GRA\r"));
        second.write("A, 0, 1, 2, 99.5\r\n");
        QTRY_VERIFY(services().serial->in_buffer_count() > 0);
        std::string in;
        QTRY_COMPARE((in += flush_comm_input(), in), std::string("A, 0, 1, 2, 99.5\r\n"));
        QCOMPARE(flush_comm_input(), std::string());
        close_comm_port();
        QVERIFY(!services().serial->port_open());
        close_comm_port();  // closing twice is no error
    }

    void nothing_free_tells_once() {
        auto t = test::install_test_services();
        t.boxes->expect();
        t.serial->failing = {1, 2, 3, 4};
        scan_comm_ports();
        QVERIFY(!any_comm_port_free());
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(t.boxes->shown[0].title, std::string("ERROR"));
        QCOMPARE(t.boxes->shown[0].style, 16);
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
        QTest::newRow("other letter") << "x\r" << "";
        QTest::newRow("three long") << "e\r\n" << "";
    }
    void reply_errors() {
        QFETCH(QString, buffer);
        QFETCH(QString, text);
        auto t = test::install_test_services();
        if (!text.isEmpty()) t.boxes->expect();
        shared().port.comm_buffer = ss(buffer);
        show_reply_error();
        if (text.isEmpty()) {
            QVERIFY(t.boxes->shown.empty());
        } else {
            QCOMPARE(t.boxes->shown.size(), std::size_t(1));
            QCOMPARE(qs(t.boxes->shown[0].text), text);
            QCOMPARE(t.boxes->shown[0].title, std::string("ERROR"));
        }
    }

    void change_port_options_data() {
        QTest::addColumn<int>("port");
        QTest::addColumn<QList<int>>("failing");
        QTest::addColumn<QList<bool>>("enabled");
        QTest::newRow("all free, port 2") << 2 << QList<int>{} << QList<bool>{true, true, true, true};
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
        QCOMPARE(f->windowTitle(), QString("CONFIGURATION"));
        for (int n = 1; n <= 4; ++n) {
            QCOMPARE(option(f, n)->isChecked(), n == port);
            QCOMPARE(option(f, n)->isEnabled(), enabled[n - 1]);
            QCOMPARE(option(f, n)->text(), QString("Comm %1").arg(n));
            QCOMPARE(option(f, n)->toolTip(), QString("fake%1").arg(n));
        }
        QCOMPARE(f->findChild<QLabel*>("lblDevice2")->text(), QString("fake2"));
    }

    void update_takes_the_choice_in_order() {
        auto t = test::install_test_services();
        forms::get<frmMain>();
        auto* f = forms::get<frmChangePort>();
        f->show();
        t.serial->ops.clear();
        QTest::mouseClick(option(f, 4), Qt::LeftButton);
        QVERIFY(option(f, 4)->isChecked());
        QTest::mouseClick(f->findChild<QPushButton*>("cmdUpdate"), Qt::LeftButton);
        QCOMPARE(shared().port.comm_port, 4);
        QCOMPARE(t.settings->get_setting("KYT", "STARTUP", "comm"), std::string("4"));
        QCOMPARE(forms::loaded<frmMain>()->windowTitle(), QString("KYT CONSOLE  -  Comm 4"));
        QCOMPARE(t.serial->ops.front(), std::string("close"));
        QCOMPARE(t.serial->ops.back(), std::string("open"));
        QCOMPARE(t.serial->port_number(), 4);
        QVERIFY(!forms::is_loaded<frmChangePort>());
    }

    // The unsaved choice survives a visit to another program; moving to
    // another window of the console and back resets it.
    void choice_kept_while_away_from_the_console() {
        test::install_test_services();
        frmMain* m = forms::get<frmMain>();
        m->show();
        auto* f = forms::get<frmChangePort>();
        f->show();
        QApplication::setActiveWindow(f);
        QTest::mouseClick(option(f, 4), Qt::LeftButton);
        QApplication::setActiveWindow(nullptr);
        QApplication::setActiveWindow(f);
        QVERIFY(option(f, 4)->isChecked());
        QApplication::setActiveWindow(m);
        QApplication::setActiveWindow(f);
        QVERIFY(option(f, 2)->isChecked());
    }

    void cancel_changes_nothing() {
        auto t = test::install_test_services();
        forms::get<frmMain>();
        auto* f = forms::get<frmChangePort>();
        f->show();
        QTest::mouseClick(option(f, 1), Qt::LeftButton);
        QTest::mouseClick(f->findChild<QPushButton*>("cmdCancel"), Qt::LeftButton);
        QCOMPARE(shared().port.comm_port, 2);
        QCOMPARE(t.settings->get_setting("kyt", "Startup", "comm", "absent"), std::string("absent"));
        QVERIFY(!forms::is_loaded<frmChangePort>());
    }
};

QTEST_MAIN(tst_comm_ports)
#include "tst_comm_ports.moc"
