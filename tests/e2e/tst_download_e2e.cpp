// Downloads as a technician makes them: the main window on a real serial
// line whose Comm 1 is the simulated analyser, the download dialog, the test
// header, the capture screen, and the files on disk.

#include <QtTest>

#include <QAction>
#include <QCheckBox>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "acquisition/frmDownload.h"
#include "app/form_registry.h"
#include "common/text.h"
#include "link/protocol.h"
#include "reports/capture.h"
#include "reports/frmReports.h"
#include "support/console_e2e.h"
#include "support/kyt_tool_run.h"

using namespace kyt;
using namespace kyt::test;

namespace {

// The dialog with a channel and a mode chosen, Save to File as asked, OK pressed.
void download(char channel, const char* mode, bool save_file) {
    frmDownload* d = forms::get<frmDownload>();
    d->show();
    child<QRadioButton>(d, qPrintable(QString("optChannel") + channel))->setChecked(true);
    child<QRadioButton>(d, mode)->setChecked(true);
    child<QCheckBox>(d, "chkSaveFile")->setChecked(save_file);
    child<QPushButton>(d, "CmdOK")->click();
}

QString shown(frmReports* r) { return child<QPlainTextEdit>(r, "txtData")->toPlainText(); }

// A download to a file, `target`, with the header filled in: its capture screen.
frmReports* download_to(Console& c, const QString& target, char channel, const char* mode) {
    c.t.dialogs->queue(ss(target));
    fill_header_when_shown();
    download(channel, mode, true);
    return forms::loaded<frmReports>();
}

// The same, saved once the capture screen shows its end; false when it
// never came to the end.
bool save_download(Console& c, char channel, const char* mode, const QString& target, int wait_ms = 20000) {
    frmReports* r = download_to(c, target, channel, mode);
    if (!r || !r->isVisible() || !QTest::qWaitFor([&] { return shown(r).contains("End Of Download"); }, wait_ms))
        return false;
    child<QPushButton>(r, "cmdSave")->click();
    flush_deletes();
    return true;
}

// What a summary or a log with a header, saved to a file, holds, less the
// text of the line where the analyser dates the test: each call starts an
// analyser of its own, and two started in different minutes date it apart.
std::string saved_download(const char* mode, const QStringList& sim_args) {
    SimConsole c(sim_args);
    if (!c.sim.ready()) return "no simulator";
    const QString target = c.work.filePath("saved");
    std::string text = save_download(c, 'A', mode, target) ? text_of(target) : "no end";
    close_console();
    if (const std::size_t date = text.find("Test Date:"); date != std::string::npos)
        text.erase(date, text.find(CR, date) - date);
    return text;
}

}  // namespace

class tst_download_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }

    // A summary or a log with the header filled in lands in its file with
    // the header fields in place; a line that splits replies and damages
    // line ends gives the same bytes.
    void saved_with_header_data() {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("kind");  // what the text says it is
        QTest::newRow("summary") << "optGetSummary" << "SUMMARY";
        QTest::newRow("data log") << "optGetLog" << "END OF DATA";
    }
    void saved_with_header() {
        QFETCH(QString, mode);
        QFETCH(QString, kind);
        const QByteArray m = mode.toLatin1();
        const std::string clean = saved_download(m.constData(), {"--seed", "3"});
        QVERIFY2(clean.find(kind.toStdString()) != std::string::npos, clean.c_str());
        QVERIFY(clean.find("Acme Pumps") != std::string::npos);
        QVERIFY(clean.find("SN-1") != std::string::npos);
        QVERIFY(clean.find('\a') == std::string::npos);
        QVERIFY(saved_download(m.constData(), {"--seed", "3", "--split", "--damage-line-ends"}) == clean);
    }

    // A data log without a file: the capture goes to tempfile.dat, in order.
    void log_to_the_capture_file() {
        SimConsole c({"--seed", "4"});
        QVERIFY(c.sim.ready());
        download('B', "optGetLog", false);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r && r->is_capture_panel());
        QTRY_VERIFY_WITH_TIMEOUT(shown(r).contains("End Of Download"), 20000);
        const std::string text = text_of(c.work.filePath("tempfile.dat"));
        const std::size_t head = text.find("Elapsed"), end = text.find("END OF DATA");
        QVERIFY(head != std::string::npos && end != std::string::npos && head < end);
        QVERIFY(text.find("00:30:00") != std::string::npos);
        QVERIFY(!shared().run.report_pending);
    }

    // A log far longer than the capture screen keeps in hand: the file is
    // whole and in order, every page and every row. Opened in the report
    // editor and converted there, it gives the same spreadsheet file as the
    // command-line tool makes of it.
    void long_log_in_pages_and_converted() {
        SimConsole c({"--speed", "7200", "--seed", "6"});
        QVERIFY(c.sim.ready());
        services().serial->output(command_start_test('C', test_single_rate));
        QTest::qWait(8000);  // some sixteen hours of test on the analyser's clock
        const QString log = c.work.filePath("long.log");
        QVERIFY(save_download(c, 'C', "optGetLog", log, 60000));
        const std::string text = text_of(log);
        QVERIFY2(text.size() > 3 * capture_text_limit, qPrintable(QString::number(text.size())));
        // Every row once, 30 s after the one before, across all the pages.
        int rows = 0, last = 0, pages = 1;
        std::size_t pos = 0;
        std::string_view line;
        while (next_line(text, pos, line)) {
            if (line.find("p. ") != std::string_view::npos && line.find("p. 01") == std::string_view::npos) ++pages;
            const std::string_view t = trim_view(line);
            if (t.size() < 8 || t[2] != ':' || t[5] != ':') continue;
            const int seconds = std::stoi(std::string(t.substr(0, 2))) * 3600 +
                                std::stoi(std::string(t.substr(3, 2))) * 60 + std::stoi(std::string(t.substr(6, 2)));
            if (rows > 0) QCOMPARE(seconds, last + 30);
            last = seconds;
            ++rows;
        }
        QVERIFY2(rows > 1000, qPrintable(QString::number(rows)));
        QVERIFY(pages > 20);
        QVERIFY(text.find("END OF DATA") > text.rfind("p. "));

        QTemporaryDir tool_dir;
        QVERIFY(QFile::copy(log, tool_dir.filePath("long.log")));
        QCOMPARE(run_kyt_tool({"csv", tool_dir.filePath("long.log")}).exit_code, 0);
        forms::loaded<frmMain>()->findChild<QAction*>("mnuEdit")->trigger();
        frmReports* editor = forms::loaded<frmReports>();
        QVERIFY(editor && editor->isVisible());
        // Open the log, which stores it again before the conversion, and
        // convert it.
        c.t.dialogs->queue(ss(log));
        editor->findChild<QAction*>("mnuOpen")->trigger();
        c.t.dialogs->queue(ss(log));
        c.t.boxes->expect();
        editor->findChild<QAction*>("mnuConvertPrn")->trigger();
        QCOMPARE(c.t.boxes->shown.back().text, std::string("Successful conversion"));
        const std::string ours = text_of(c.work.filePath("long.CSV"));
        QVERIFY(ours.find("Elasped") != std::string::npos);
        QCOMPARE(ours, text_of(tool_dir.filePath("long.CSV")));
    }

    // Receive Any waits until the operator stops it; the form stays.
    void receive_any_until_stopped() {
        SimConsole c(QStringList{});
        QVERIFY(c.sim.ready());
        download('A', "optReceiveAny", false);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r);
        QVERIFY(shown(r).contains("Waiting for Serial Input"));
        auto* stop = child<QPushButton>(r, "cmdCancel");
        QCOMPARE(stop->text(), QString("Stop"));
        stop->click();
        QCOMPARE(stop->text(), QString("Cancel"));
        QVERIFY(!r->GetDataTimer.isActive());
        QVERIFY(forms::is_loaded<frmReports>());
    }

    // A channel without a pump: the message, and back to the main window.
    void channel_without_a_pump() {
        SimConsole c({"--channels", "ABC"});
        QVERIFY(c.sim.ready());
        c.t.boxes->expect();
        download('D', "optGetSummary", false);
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmReports>(), 10000);
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(c.t.boxes->shown[0].text, std::string("Current channel selected is not connected."));
        QVERIFY(!shared().run.report_pending);
        QVERIFY(forms::loaded<frmMain>()->isEnabled());
    }

    // An analyser that never answers: the screen waits, Cancel ends the
    // wait, and the chosen file holds nothing half written.
    void silent_analyser_is_cancelled() {
        SimConsole c({"--silent-after", "0"});
        QVERIFY(c.sim.ready());
        const QString target = c.work.filePath("silent.sum");
        frmReports* r = download_to(c, target, 'A', "optGetSummary");
        QVERIFY(r && r->isVisible());
        QTest::qWait(1500);
        QVERIFY(r->GetDataTimer.isActive());
        QCOMPARE(shown(r), QString());
        QVERIFY(shared().run.report_pending);
        child<QPushButton>(r, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmReports>());
        QVERIFY(!shared().run.report_pending);
        QCOMPARE(QFileInfo(target).size(), 0);
        QVERIFY(!QFileInfo::exists(c.work.filePath("tempfile.dat")));
    }

    // The analyser goes away while a log is coming: one message, the port
    // closed, what came stays on screen and nothing is stored half.
    void analyser_vanishes_mid_download() {
        SimConsole c({"--split", "--seed", "8"});
        QVERIFY(c.sim.ready());
        const QString target = c.work.filePath("cut.log");
        frmReports* r = download_to(c, target, 'A', "optGetLog");
        QVERIFY(r);
        QTRY_VERIFY_WITH_TIMEOUT(!shown(r).isEmpty(), 10000);
        c.t.boxes->expect();
        c.sim.stop();
        QTRY_COMPARE_WITH_TIMEOUT(c.t.boxes->shown.size(), std::size_t(1), 10000);
        QVERIFY2(c.t.boxes->shown[0].text.find("serial line") != std::string::npos, c.t.boxes->shown[0].text.c_str());
        QVERIFY(!services().serial->port_open());
        QTRY_VERIFY(!r->GetDataTimer.isActive());  // its next read meets the loss
        QVERIFY(!shown(r).contains("End Of Download"));
        QCOMPARE(QFileInfo(target).size(), 0);
        // The operator leaves the screen; the console carries on without a
        // second message.
        child<QPushButton>(r, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmReports>());
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY(forms::loaded<frmMain>()->isEnabled());
    }

    void cleanup() { close_console(); }
};

QTEST_MAIN(tst_download_e2e)
#include "tst_download_e2e.moc"
