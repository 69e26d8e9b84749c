// Whole captures through the report form's tick handler: what reaches the
// disk, what is told, and whether the form stays.

#include <QtTest>

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "common/file_text.h"
#include "common/forms.h"
#include "reports/capture.h"
#include "reports/frmReports.h"
#include "support/form_script.h"
#include "support/test_data.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

const ReportRec rec{"Acme Pumps", "Volumat X", "SN-1", "C42", "ICU", "Ward 3",
                    "100", "250", "checked", "J. Doe", "LVP", "5"};

std::vector<std::string> blocks_of(const std::string& text) {
    std::vector<std::string> blocks;
    for (std::size_t i = 0; i < text.size(); i += 64) blocks.push_back(text.substr(i, 64));
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

}  // namespace

class tst_reports_capture : public QObject {
    Q_OBJECT
private slots:
    // The summary and the log to the capture file, Receive Any, a vanishing
    // analyser and a channel without a pump run against the simulator in
    // tst_download_e2e; these are the cases it cannot bring about.
    void whole_capture_data() {
        QTest::addColumn<QByteArray>("stale");  // waiting in the port when the form loads
        QTest::addColumn<QByteArray>("text");   // fed in blocks, one a tick
        QTest::addColumn<QString>("event");     // "", "unwritable", "unwritable:NAME"
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<bool>("form_kept");
        QTest::addColumn<bool>("file_written");  // tempfile.dat, or the chosen name; Print on with it
        const QByteArray summary = QByteArray::fromStdString(test_data("logs/analyser_summary.txt"));
        const QString bad = "Bad report file name";
        // An error reply left in the port must not be read as part of this capture.
        QTest::newRow("stale input dropped at load")
            << QByteArray("e\r") << summary << "" << QStringList{} << true << true;
        // The analyser was told to stop the test on the channel.
        QTest::newRow("not connected: the test stopped")
            << QByteArray() << QByteArray("n\r") << "" << QStringList{"Current channel selected is not connected."}
            << false << false;
        QTest::newRow("unwritable folder, name chosen")
            << QByteArray() << summary << "unwritable:chosen.sum" << QStringList{bad} << true << true;
        QTest::newRow("unwritable folder, none chosen")
            << QByteArray() << summary << "unwritable" << QStringList{bad, "Saving report cancelled."} << true << false;
    }

    void whole_capture() {
        QFETCH(QByteArray, stale);
        QFETCH(QByteArray, text);
        QFETCH(QString, event);
        QFETCH(QStringList, boxes);
        QFETCH(bool, form_kept);
        QFETCH(bool, file_written);
        auto t = test::install_test_services();
        QTemporaryDir home;
        const QString unwritable = home.path() + "/no-such-folder";
        SharedState& s = shared();
        s.dirs.save_dir = event.startsWith("unwritable") ? unwritable.toStdString() : home.path().toStdString();
        s.run.download_mode = '1';
        s.port.channel = 'B';
        QString chosen;
        if (event.startsWith("unwritable:")) chosen = home.path() + "/" + event.mid(11);
        if (event.startsWith("unwritable")) t.dialogs->queue(chosen.toStdString());

        t.serial->set_port_open(true);
        t.serial->feed(stale.toStdString());
        t.boxes->expect(boxes.size());
        const long readings_before = t.clock->readings();

        forms::unload<frmReports>();
        test::flush_deletes();
        auto* form = forms::get<frmReports>();
        if (!stale.isEmpty()) QVERIFY2(t.clock->readings() > readings_before, "the drain did not wait");
        const CaptureSetup setup{true, '1', rec};
        form->prepare_capture(setup);
        s.run.report_pending = true;
        form->show_as_capture_panel();
        QPointer<frmReports> alive(form);
        auto* txtData = form->findChild<QPlainTextEdit*>("txtData");
        auto* cmdPrint = form->findChild<QPushButton*>("cmdPrint");
        QVERIFY(!cmdPrint->isEnabled());

        const std::vector<std::string> blocks = blocks_of(text.toStdString());
        for (const std::string& b : blocks) {
            t.serial->feed(b);
            if (alive) form->GetDataTimer_Timer();
        }
        for (int i = 0; i < 3 && alive; ++i) form->GetDataTimer_Timer();
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
        QCOMPARE(QFileInfo::exists(written), file_written);
        if (event.startsWith("unwritable")) QVERIFY(!QFileInfo::exists(unwritable));
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
            QCOMPARE(cmdPrint->isEnabled(), file_written);
            QCOMPARE(form->GetDataTimer.isActive(), false);
        } else {
            QVERIFY(!t.serial->commands.empty() && t.serial->commands.back().starts_with("STB"));
            QVERIFY(!s.run.report_pending);
        }
        forms::unload<frmReports>();
        test::flush_deletes();
    }
};

QTEST_MAIN(tst_reports_capture)
#include "tst_reports_capture.moc"
