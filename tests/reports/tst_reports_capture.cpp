// Whole captures through the report form's tick handler: what reaches the
// disk, what is told, and whether the form stays.

#include <QtTest>

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <memory>

#include "common/file_text.h"
#include "common/forms.h"
#include "link/qt_serial_line.h"
#include "reports/capture.h"
#include "reports/frmReports.h"
#include "support/form_script.h"
#include "support/pty.h"
#include "support/test_data.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

const ReportRec rec{"Acme Pumps", "Volumat X", "SN-1", "C42", "ICU", "Ward 3",
                    "100", "250", "checked", "J. Doe", "LVP", "5"};

std::vector<std::string> blocks_of(const std::string& text, int size) {
    std::vector<std::string> blocks;
    for (std::size_t i = 0; i < text.size(); i += size) blocks.push_back(text.substr(i, size));
    return blocks;
}

// The file the core makes of the same blocks.
std::string expected_tempfile(const CaptureSetup& setup, const std::vector<std::string>& blocks) {
    Capture c(setup);
    for (const std::string& b : blocks)
        if (CaptureTick t = c.tick(b); t.ended) return t.tempfile_text;
    for (int i = 0; i < 3; ++i)
        if (CaptureTick t = c.tick({}); t.ended) return t.tempfile_text;
    return {};
}

bool exists(const QString& path) { return QFileInfo::exists(path); }

}  // namespace

class tst_reports_capture : public QObject {
    Q_OBJECT
private slots:
    void whole_capture_data() {
        QTest::addColumn<char>("mode");
        QTest::addColumn<QByteArray>("stale");  // waiting in the port when the form loads
        QTest::addColumn<QByteArray>("text");   // fed in blocks of block_size, one a tick
        QTest::addColumn<int>("block_size");
        QTest::addColumn<QString>("event");     // "", "stop", "vanish", "unwritable", "unwritable:NAME"
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<bool>("form_kept");
        QTest::addColumn<bool>("file_written");  // tempfile.dat, or the chosen name
        QTest::addColumn<bool>("print_enabled");

        const QByteArray summary = QByteArray::fromStdString(test_data("logs/analyser_summary.txt"));
        const QByteArray log = QByteArray::fromStdString(test_data("logs/analyser_log.txt"));
        const QString bad = "Bad report file name";
        QTest::newRow("summary in odd blocks") << '1' << QByteArray() << summary << 7 << "" << QStringList{} << true
                                               << true << true;
        QTest::newRow("data log in large blocks")
            << '2' << QByteArray() << log << 1000 << "" << QStringList{} << true << true << true;
        // An error reply left in the port must not be read as part of this capture.
        QTest::newRow("stale input dropped at load")
            << '1' << QByteArray("e\r") << summary << 64 << "" << QStringList{} << true << true << true;
        // The analyser answers the download command so when the channel has no pump.
        QTest::newRow("not connected") << '1' << QByteArray() << QByteArray("n\r") << 5 << ""
                                       << QStringList{"Current channel selected is not connected."} << false
                                       << false << false;
        QTest::newRow("stop in mode 4") << '4' << QByteArray() << QByteArray("any text\r\nmore text\r\n") << 9
                                        << "stop" << QStringList{} << true << false << true;
        QTest::newRow("unwritable folder, name chosen")
            << '1' << QByteArray() << summary << 300 << "unwritable:chosen.sum" << QStringList{bad} << true << true
            << true;
        QTest::newRow("unwritable folder, none chosen")
            << '1' << QByteArray() << summary << 300 << "unwritable"
            << QStringList{bad, "Saving report cancelled."} << true << false << false;
        QTest::newRow("device vanishes mid-capture")
            << '2' << QByteArray() << log.left(200) << 200 << "vanish"
            << QStringList{"The serial line failed: "} << true << false << false;
    }

    void whole_capture() {
        QFETCH(char, mode);
        QFETCH(QByteArray, stale);
        QFETCH(QByteArray, text);
        QFETCH(int, block_size);
        QFETCH(QString, event);
        QFETCH(QStringList, boxes);
        QFETCH(bool, form_kept);
        QFETCH(bool, file_written);
        QFETCH(bool, print_enabled);
        QVERIFY(!text.isEmpty());

        auto t = test::install_test_services();
        QTemporaryDir home;
        const QString unwritable = home.path() + "/no-such-folder";
        SharedState& s = shared();
        s.dirs.save_dir = event.startsWith("unwritable") ? unwritable.toStdString() : home.path().toStdString();
        s.run.download_mode = mode;
        s.port.channel = 'B';
        QString chosen;
        if (event.startsWith("unwritable:")) chosen = home.path() + "/" + event.mid(11);
        if (event.startsWith("unwritable")) t.dialogs->queue(chosen.toStdString());

        t.serial->set_port_open(true);
        t.serial->feed(stale.toStdString());
        std::unique_ptr<test::Pty> pty;
        if (event == "vanish") {
            pty = std::make_unique<test::Pty>();
            QVERIFY(pty->ok());
            t.settings->save_setting("kyt", "Ports", "comm1", pty->device());
            services().serial = std::make_unique<QtSerialLine>(*t.settings);  // t.serial is gone
            services().serial->set_port_number(1);
            services().serial->set_port_open(true);
            QVERIFY(services().serial->port_open());
        }
        t.boxes->expect(boxes.size());
        const long readings_before = t.clock->readings();

        forms::unload<frmReports>();
        test::flush_deletes();
        auto* form = forms::get<frmReports>();
        if (!stale.isEmpty()) QVERIFY2(t.clock->readings() > readings_before, "the drain did not wait");
        const CaptureSetup setup{true, mode, rec};
        form->prepare_capture(setup);
        s.run.report_pending = true;
        form->show_as_capture_panel();
        QVERIFY(form->is_capture_panel());
        QPointer<frmReports> alive(form);
        auto* txtData = form->findChild<QPlainTextEdit*>("txtData");
        auto* cmdPrint = form->findChild<QPushButton*>("cmdPrint");
        auto* cmdCancel = form->findChild<QPushButton*>("cmdCancel");
        QCOMPARE(cmdCancel->text(), QString(mode == '4' ? "Stop" : "&Cancel"));
        QVERIFY(!cmdPrint->isEnabled());

        const std::vector<std::string> blocks = blocks_of(text.toStdString(), block_size);
        if (event == "vanish") {
            // The text comes, a line of it is shown; then the far end goes.
            form->GetDataTimer.stop();
            pty->write(text.toStdString());
            QTRY_VERIFY((form->GetDataTimer_Timer(), txtData->toPlainText() != ""));
            const QString shown = txtData->toPlainText();
            pty.reset();
            QTRY_VERIFY((form->GetDataTimer_Timer(), t.boxes->shown.size() == 1));
            QVERIFY(!form->GetDataTimer.isActive());
            QCOMPARE(txtData->toPlainText(), shown);
        } else {
            for (const std::string& b : blocks) {
                t.serial->feed(b);
                if (alive) form->GetDataTimer_Timer();
            }
            for (int i = 0; i < 3 && alive; ++i) form->GetDataTimer_Timer();
            if (event == "stop" && alive) {
                QVERIFY(txtData->toPlainText() != QString::fromLatin1(waiting_for_input_text));
                cmdCancel->click();
                QCOMPARE(cmdCancel->text(), QString("Cancel"));
            }
        }
        test::flush_deletes();

        QCOMPARE(t.boxes->pending(), std::size_t(0));
        QCOMPARE(t.boxes->shown.size(), std::size_t(boxes.size()));
        for (int i = 0; i < boxes.size(); ++i)
            QVERIFY2(QString::fromStdString(t.boxes->shown[i].text).startsWith(boxes[i]),
                     t.boxes->shown[i].text.c_str());
        QCOMPARE(forms::is_loaded<frmReports>(), form_kept);
        QCOMPARE(bool(alive), form_kept);

        const QString tempfile = QString::fromStdString(s.dirs.save_dir) + "/tempfile.dat";
        const QString written = chosen.isEmpty() ? tempfile : chosen;
        QCOMPARE(exists(written), file_written);
        if (event.startsWith("unwritable")) QVERIFY(!exists(unwritable));
        if (file_written) {
            QCOMPARE(read_text_file(written.toStdString()).value_or("(none)"), expected_tempfile(setup, blocks));
            QVERIFY(s.run.report_pending == false);
            QCOMPARE(txtData->toPlainText().toStdString(), std::string(end_of_download_text));
        }
        if (!chosen.isEmpty()) {
            QCOMPARE(QString::fromStdString(s.dirs.save_dir), home.path());
            QCOMPARE(QString::fromStdString(t.settings->get_setting("kyt", "startup", "savedir", "")), home.path());
        }
        if (form_kept) {
            QCOMPARE(cmdPrint->isEnabled(), print_enabled);
            QCOMPARE(form->GetDataTimer.isActive(), false);
        } else {
            // The analyser was told to stop the test on the channel.
            QVERIFY2(t.serial->sent.find("STB") != std::string::npos, t.serial->sent.c_str());
            QVERIFY(!s.run.report_pending);
        }
        forms::unload<frmReports>();
        test::flush_deletes();
    }
};

QTEST_MAIN(tst_reports_capture)
#include "tst_reports_capture.moc"
