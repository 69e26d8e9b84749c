#include <QtTest>

#include <QTextDocumentFragment>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include "common/forms.h"
#include "link/frmTestPort.h"
#include "support/test_services.h"

using namespace kyt;

class tst_test_port : public QObject {
    Q_OBJECT
private slots:
    void cleanup() {
        forms::unload<frmTestPort>();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void the_form_as_stored() {
        test::install_test_services();
        auto* f = forms::get<frmTestPort>();
        QCOMPARE(f->windowTitle(), QString("Serial Port Test"));
        // The label underlines the button's access key.
        const QString label = f->findChild<QLabel*>("Label1")->text();
        QVERIFY(label.contains("<u>T</u>est Port"));
        QCOMPARE(QTextDocumentFragment::fromHtml(label).toPlainText(),
                 QString("Press \"Test Port\" and you should see the following two line in the window below:"));
        for (const char* name : {"Label2", "Label3"}) {
            auto* l = f->findChild<QLabel*>(name);
            QCOMPARE(l->font().family(), QString("Courier New"));
            QCOMPARE(l->palette().color(QPalette::WindowText), QColor(Qt::blue));
        }
        QCOMPARE(f->findChild<QLabel*>("Label2")->text(), QString("ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789"));
        QCOMPARE(f->findChild<QLabel*>("Label3")->text(), QString("abcdefghijklmnopqrstuvwxyz  !#()-_=:."));
        QCOMPARE(f->findChild<QPushButton*>("Command1")->text(), QString("&Test Port"));
        QCOMPARE(f->findChild<QPushButton*>("Command3")->text(), QString("E&xit Port Test"));
    }

    void load_reads_one_character_at_a_time() {
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        t.serial->feed("left over");
        auto* f = forms::get<frmTestPort>();
        QCOMPARE(t.serial->input_len, 1);
        QCOMPARE(t.serial->in_buffer_count(), 0);  // the load cleared the input
        QCOMPARE(f->GetDataTimer.interval(), 10);
        QVERIFY(f->GetDataTimer.isActive());
    }

    void reads_until_the_full_stop() {
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        auto* f = forms::get<frmTestPort>();
        auto* box = f->findChild<QPlainTextEdit*>("txtData");
        t.serial->reply_next("AB\r\nab.X");
        f->Command1_Click();
        QCOMPARE(t.serial->commands, std::vector<std::string>{"DLA3\r"});
        for (int tick = 0; tick < 4; ++tick) f->GetDataTimer_Timer();
        QCOMPARE(box->toPlainText(), QString("AB\n"));  // CR LF shows as one line end
        QVERIFY(f->GetDataTimer.isActive());
        for (int tick = 0; tick < 3; ++tick) f->GetDataTimer_Timer();
        QCOMPARE(box->toPlainText(), QString("AB\nab."));
        QVERIFY(!f->GetDataTimer.isActive());
        QCOMPARE(t.serial->in_buffer_count(), 1);  // nothing read after the full stop
    }

    void a_second_test_starts_afresh() {
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        auto* f = forms::get<frmTestPort>();
        auto* box = f->findChild<QPlainTextEdit*>("txtData");
        t.serial->reply_next("x.");
        QTest::mouseClick(f->findChild<QPushButton*>("Command1"), Qt::LeftButton);
        f->GetDataTimer_Timer();
        f->GetDataTimer_Timer();
        QVERIFY(!f->GetDataTimer.isActive());
        QTest::mouseClick(f->findChild<QPushButton*>("Command1"), Qt::LeftButton);
        QCOMPARE(box->toPlainText(), QString());
        QVERIFY(f->GetDataTimer.isActive());
        QCOMPARE(t.serial->commands.size(), std::size_t(2));
    }

    void a_closed_port_is_told_not_crashed() {
        auto t = test::install_test_services();
        t.boxes->expect();
        auto* f = forms::get<frmTestPort>();
        f->Command1_Click();
        QCOMPARE(t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(t.boxes->shown[0].style, 16);
        QVERIFY(!f->GetDataTimer.isActive());
    }

    void exit_unloads() {
        test::install_test_services();
        auto* f = forms::get<frmTestPort>();
        QTest::mouseClick(f->findChild<QPushButton*>("Command3"), Qt::LeftButton);
        QVERIFY(!forms::is_loaded<frmTestPort>());
    }
};

QTEST_MAIN(tst_test_port)
#include "tst_test_port.moc"
