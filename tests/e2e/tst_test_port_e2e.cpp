// The serial port test as a user runs it: the main window starts on a real
// serial line whose Comm 2 is the simulated analyser, the test form asks for
// the pattern and shows it as it arrives.

#include <QtTest>

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
        form->Command1_Click();
        // The pattern arrives, then the line goes; the form stops with one box.
        QTRY_VERIFY_WITH_TIMEOUT(!form->GetDataTimer.isActive(), 10000);
        form->Command1_Click();
        QTRY_VERIFY_WITH_TIMEOUT(!t.boxes->shown.empty(), 10000);
        QCOMPARE(t.boxes->shown.back().style, 16);
        QVERIFY(!form->GetDataTimer.isActive());    }
};

QTEST_MAIN(tst_test_port_e2e)
#include "tst_test_port_e2e.moc"
