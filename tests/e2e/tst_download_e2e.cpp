// Downloads as a technician makes them: the main window on a real serial
// line whose Comm 1 is the simulated analyser, the download dialog, the test
// header, the capture screen, and the files on disk.

#include <QtTest>

#include <QAction>
#include <QCheckBox>
#include <QFileInfo>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "acquisition/frmDownload.h"
#include "acquisition/frmHeader.h"
#include "app/form_registry.h"
#include "app/frmMain.h"
#include "common/file_text.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "common/text.h"
#include "link/protocol.h"
#include "link/qt_serial_line.h"
#include "reports/capture.h"
#include "reports/frmReports.h"
#include "support/analyser_sim.h"
#include "support/form_script.h"
#include "support/kyt_tool_run.h"
#include "support/test_services.h"
#include "support/console_e2e.h"

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

// A summary or a log with a header, saved to a file: what the file holds.
std::string saved_download(const char* mode, const QStringList& sim_args, const QString& file) {
    test::Sim sim(sim_args);
    if (!sim.ready()) return "no simulator";
    Console c;
    start_console(c, sim);
    const QString target = c.work.filePath(file);
    c.t.dialogs->queue(ss(target));
    fill_header_when_shown();
    download('A', mode, true);
    frmReports* r = forms::loaded<frmReports>();
    if (!r || !r->isVisible()) return "no capture screen";
    if (!QTest::qWaitFor([&] { return shown(r).contains("End Of Download"); }, 20000)) return "no end";
    child<QPushButton>(r, "cmdSave")->click();
    const auto text = read_text_file(ss(target));
    forms::unload<frmReports>();
    forms::unload<frmDownload>();
    forms::unload<frmMain>();
    test::flush_deletes();
    services().serial.reset();
    return text.value_or("unreadable");
}

}  // namespace

class tst_download_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        register_all_forms();
    }

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
        const std::string clean = saved_download(m.constData(), {"--seed", "3"}, "clean");
        QVERIFY2(clean.find(kind.toStdString()) != std::string::npos, clean.c_str());
        QVERIFY(clean.find("Acme Pumps") != std::string::npos);
        QVERIFY(clean.find("SN-1") != std::string::npos);
        QVERIFY(clean.find('\a') == std::string::npos);
        const std::string rough =
            saved_download(m.constData(), {"--seed", "3", "--split", "--damage-line-ends"}, "rough");
        QVERIFY(rough == clean);
    }

    // A data log without a file: the capture goes to tempfile.dat, in order.
    void log_to_the_capture_file() {
        test::Sim sim({"--seed", "4"});
        QVERIFY(sim.ready());
        Console c;
        start_console(c, sim);
        download('B', "optGetLog", false);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r && r->is_capture_panel());
        QTRY_VERIFY_WITH_TIMEOUT(shown(r).contains("End Of Download"), 20000);
        const auto text = read_text_file(ss(c.work.filePath("tempfile.dat")));
        QVERIFY(text);
        const std::size_t head = text->find("Elapsed"), end = text->find("END OF DATA");
        QVERIFY(head != std::string::npos && end != std::string::npos && head < end);
        QVERIFY(text->find("00:30:00") != std::string::npos);
        QVERIFY(!shared().run.report_pending);
    }

    // A log far longer than the capture screen keeps in hand: the file is
    // whole and in order, every page and every row.
    void long_log_in_pages() {
        test::Sim sim({"--speed", "7200", "--seed", "6"});
        QVERIFY(sim.ready());
        Console c;
        start_console(c, sim);
        services().serial->output(command_start_test('C', test_single_rate));
        QTest::qWait(8000);  // some sixteen hours of test on the analyser's clock
        const QString target = c.work.filePath("long.log");
        c.t.dialogs->queue(ss(target));
        fill_header_when_shown();
        download('C', "optGetLog", true);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r);
        QTRY_VERIFY_WITH_TIMEOUT(shown(r).contains("End Of Download"), 60000);
        child<QPushButton>(r, "cmdSave")->click();
        const auto text = read_text_file(ss(target));
        QVERIFY(text);
        QVERIFY2(text->size() > 3 * capture_text_limit, qPrintable(QString::number(text->size())));
        // Every row once, 30 s after the one before, across all the pages.
        int rows = 0, last = 0, pages = 1;
        std::size_t pos = 0;
        std::string_view line;
        while (next_line(*text, pos, line)) {
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
        QVERIFY(text->find("END OF DATA") > text->rfind("p. "));
    }

    // A downloaded log, opened in the report editor and converted there,
    // gives the same spreadsheet file as the command-line tool makes of it.
    void downloaded_log_converted() {
        test::Sim sim({"--seed", "5"});
        QVERIFY(sim.ready());
        Console c;
        start_console(c, sim);
        const QString log = c.work.filePath("dl.log");
        c.t.dialogs->queue(ss(log));
        fill_header_when_shown();
        download('A', "optGetLog", true);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r);
        QTRY_VERIFY_WITH_TIMEOUT(shown(r).contains("End Of Download"), 20000);
        child<QPushButton>(r, "cmdSave")->click();
        test::flush_deletes();

        QTemporaryDir tool_dir;
        QVERIFY(QFile::copy(log, tool_dir.filePath("dl.log")));
        QCOMPARE(run_kyt_tool({"csv", tool_dir.filePath("dl.log")}).exit_code, 0);

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
        const auto ours = read_text_file(ss(c.work.filePath("dl.CSV")));
        QVERIFY(ours && ours->find("Elasped") != std::string::npos);
        QCOMPARE(*ours, read_text_file(ss(tool_dir.filePath("dl.CSV"))).value_or("(none)"));
    }

    // Receive Any waits until the operator stops it; the form stays.
    void receive_any_until_stopped() {
        test::Sim sim({});
        QVERIFY(sim.ready());
        Console c;
        start_console(c, sim);
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
        test::Sim sim({"--channels", "ABC"});
        QVERIFY(sim.ready());
        Console c;
        start_console(c, sim);
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
        test::Sim sim({"--silent-after", "0"});
        QVERIFY(sim.ready());
        Console c;
        start_console(c, sim);
        const QString target = c.work.filePath("silent.sum");
        c.t.dialogs->queue(ss(target));
        fill_header_when_shown();
        download('A', "optGetSummary", true);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r && r->isVisible());
        QTest::qWait(1500);
        QVERIFY(r->GetDataTimer.isActive());
        QCOMPARE(shown(r), QString());
        QVERIFY(shared().run.report_pending);
        child<QPushButton>(r, "cmdCancel")->click();
        test::flush_deletes();
        QVERIFY(!forms::is_loaded<frmReports>());
        QVERIFY(!shared().run.report_pending);
        QCOMPARE(QFileInfo(target).size(), 0);
        QVERIFY(!QFileInfo::exists(c.work.filePath("tempfile.dat")));
    }

    // The analyser goes away while a log is coming: one message, the port
    // closed, what came stays on screen and nothing is stored half.
    void analyser_vanishes_mid_download() {
        auto sim = std::make_unique<test::Sim>(QStringList{"--split", "--seed", "8"});
        QVERIFY(sim->ready());
        Console c;
        start_console(c, *sim);
        const QString target = c.work.filePath("cut.log");
        c.t.dialogs->queue(ss(target));
        fill_header_when_shown();
        download('A', "optGetLog", true);
        frmReports* r = forms::loaded<frmReports>();
        QVERIFY(r);
        QTRY_VERIFY_WITH_TIMEOUT(!shown(r).isEmpty(), 10000);
        c.t.boxes->expect();
        sim.reset();
        QTRY_COMPARE_WITH_TIMEOUT(c.t.boxes->shown.size(), std::size_t(1), 10000);
        QVERIFY2(c.t.boxes->shown[0].text.find("serial line") != std::string::npos, c.t.boxes->shown[0].text.c_str());
        QVERIFY(!services().serial->port_open());
        QTRY_VERIFY(!r->GetDataTimer.isActive());  // its next read meets the loss
        QVERIFY(!shown(r).contains("End Of Download"));
        QCOMPARE(QFileInfo(target).size(), 0);
        // The operator leaves the screen; the console carries on without a
        // second message.
        child<QPushButton>(r, "cmdCancel")->click();
        test::flush_deletes();
        QVERIFY(!forms::is_loaded<frmReports>());
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY(forms::loaded<frmMain>()->isEnabled());
    }

    void cleanup() {
        forms::unload<frmReports>();
        forms::unload<frmDownload>();
        forms::unload<frmMain>();
        test::flush_deletes();
        services().serial.reset();
    }
};

QTEST_MAIN(tst_download_e2e)
#include "tst_download_e2e.moc"
