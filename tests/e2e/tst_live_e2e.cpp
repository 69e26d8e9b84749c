// Live tests as a technician runs them: the download dialog in real-time
// mode, the test screen polling the simulated analyser on a real serial
// line, the log and the summary on disk.

#include <QtTest>

#include <QApplication>
#include <QProcess>

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>

#include "acquisition/frmDownload.h"
#include "acquisition/frmOTGraph.h"
#include "acquisition/frmRTGraph.h"
#include "acquisition/frmSummary.h"
#include "acquisition/logformat.h"
#include "app/form_registry.h"
#include "common/chart.h"
#include "common/text.h"
#include "common/numbers.h"
#include "graph/frmGraph.h"
#include "graph/log_reader.h"
#include "link/protocol.h"
#include "support/console_e2e.h"
#include "support/kyt_tool_run.h"
#include "trumpet/frmTrumpetGraph.h"

using namespace kyt;
using namespace kyt::test;

namespace {

struct LiveRun {
    QStringList checks;       // check boxes and options to turn on, in order
    int duration_item = -1;   // item of the test-length list, with "Stop Test After"
    bool save = true;
};

// The dialog in real-time mode, OK pressed; the header is filled in when
// the run saves to files.
void start_live(const LiveRun& r) {
    if (r.save) fill_header_when_shown();
    frmDownload* d = forms::get<frmDownload>();
    d->show();
    child<QRadioButton>(d, "optRealTime")->setChecked(true);
    child<QCheckBox>(d, "chkSaveFile")->setChecked(r.save);
    for (const QString& name : r.checks) child<QAbstractButton>(d, qPrintable(name))->setChecked(true);
    if (r.duration_item >= 0) {
        child<QRadioButton>(d, "optDuration")->setChecked(true);
        child<QComboBox>(d, "cmbDuration")->setCurrentIndex(r.duration_item);
    }
    child<QPushButton>(d, "CmdOK")->click();
}

// The test screens' clocks sped up, on each screen as it comes: a poll
// every 40 ms and a test-length second every 20 ms.
struct FastScreens {
    QTimer watch;
    FastScreens() {
        QObject::connect(&watch, &QTimer::timeout, [] {
            for (const char* name : {"frmRTGraph", "frmOTGraph"}) {
                auto* f = dynamic_cast<LiveTestForm*>(forms::find(name));
                if (!f || f->property("fast").toBool()) continue;
                f->setProperty("fast", true);
                f->GetDataTimer.setInterval(40);
                if (f->DurationTimer.isActive()) f->DurationTimer.setInterval(20);
            }
        });
        watch.start(2);
    }
};

// The console on a simulator started with the given arguments, the test
// screens' clocks sped up.
struct OnSim : SimConsole {
    FastScreens fast;
    using SimConsole::SimConsole;
};

// The rows of a log: lines of the given blanks and a time.
int rows_of(const std::string& log, const char* pattern = R"(^ {9}\d\d:\d\d:\d\d  )") {
    const QRegularExpression row(pattern);
    int rows = 0;
    for (const std::string& line : split_lines(log)) rows += row.match(QString::fromStdString(line)).hasMatch();
    return rows;
}
const char* const occlusion_row_pattern = R"(^ {16}\d\d:\d\d {12}\d\d\.\d\d {6}\d{3})";

constexpr auto npos = std::string::npos;

}  // namespace

class tst_live_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }

    // A test of no set length runs until Stop; with nothing to save the
    // screen goes at once. Its replies reach the line in pieces: they are
    // read piece by piece and shown whole, with no message.
    void indefinite_test_ended_by_stop() {
        OnSim c({"--speed", "600", "--split"});
        QVERIFY(c.sim.ready());
        start_live({{"chkSingle", "chkTestAuto"}, -1, false});
        frmRTGraph* f = forms::loaded<frmRTGraph>();
        QVERIFY(f);
        QTRY_VERIFY_WITH_TIMEOUT(child<QLabel>(f, "lblIntFlow")->text() != "__.__", 10000);
        QCOMPARE(child<QLabel>(f, "lblTimeLeft")->text(), QString("N/A"));
        QVERIFY(!f->DurationTimer.isActive());
        // The dialog opened again mid-test neither goes away nor starts a
        // second run.
        frmDownload* d = forms::loaded<frmDownload>();
        d->show();
        child<QPushButton>(d, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(forms::is_loaded<frmDownload>() && d->isHidden());
        d->show();
        c.t.boxes->expect();
        child<QPushButton>(d, "CmdOK")->click();
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY(f->GetDataTimer.isActive() && shared().run.rt_running);
        child<QPushButton>(f, "cmdStop")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmRTGraph>());
    }

    // A test of over an hour, stopped by hand, then graphed and analysed:
    // the trumpet settings open on the one start such a log lists, and the
    // table on the screen is the one kyt-tool computes from the same file.
    void over_an_hour_to_the_trumpet() {
        OnSim c({"--speed", "1200", "--seed", "3"});
        QVERIFY(c.sim.ready());
        const QString log = c.work.filePath("long.log");
        c.t.dialogs->queue(ss(log));
        start_live({{"chkSingle", "chkTestAuto"}, -1, true});
        frmRTGraph* rt = forms::loaded<frmRTGraph>();
        QVERIFY(rt);
        // Each poll shows the time of the row it logs.
        const auto elapsed = [rt] { return QTime::fromString(child<QLabel>(rt, "lblElapsedTime")->text(), "hh:mm:ss"); };
        QTRY_VERIFY_WITH_TIMEOUT(elapsed().isValid() && elapsed() >= QTime(1, 5), 30000);
        child<QPushButton>(rt, "cmdStop")->click();
        flush_deletes();
        QTRY_VERIFY(!forms::is_loaded<frmRTGraph>());

        frmGraph* g = forms::get<frmGraph>();
        g->show();
        c.t.dialogs->queue(ss(log));
        child<QAction>(g, "mnuOpen")->trigger();
        when_shown("frmTrumpSet", [](QWidget* d) { child<QPushButton>(d, "CmdOK")->click(); });
        child<QAction>(g, "mnuTrumpetGraph")->trigger();
        serve_events();
        auto* f = forms::loaded<frmTrumpetGraph>();
        QVERIFY(f && f->isVisible() && !g->isVisible());
        QCOMPARE(child<QLabel>(f, "lblAnalysisPeriod")->text(), QString("Analysis Period:  60 min  -  From 0 to 60 min"));
        const ToolRun tool = run_kyt_tool({"trumpet", log, "--start", "0", "--length", "60"});
        QCOMPARE(tool.exit_code, 0);
        QCOMPARE(tool.lines.size(), 5);
        const char* cells[] = {"lblMaxErrorP_%1", "lblMinErrorP_%1", "lblMaxErrorR_%1", "lblMinErrorR_%1"};
        for (int row = 0; row < 5; ++row) {
            const QStringList fields = tool.lines[row].split(' ');
            for (int k = 0; k < 4; ++k)
                QCOMPARE(child<QLabel>(f, qPrintable(QString(cells[k]).arg(row)))->text(),
                         QString::fromStdString(format_picture(fields[k + 1].toDouble(), "0.00")));
        }
        child<QPushButton>(f, "mnuExitGraph")->click();
        QVERIFY(g->isVisible());
    }

    // An occlusion test alone, in each unit: its labels, the value graphed,
    // and its log closed by Stop.
    void occlusion_alone_data() {
        QTest::addColumn<QString>("unit");
        QTest::addColumn<double>("psi_factor");  // the graphed value from the labels: PSI times this,
        QTest::addColumn<double>("mmhg_factor"); // plus mmHg times this
        QTest::newRow("PSI") << "optPSI" << 1.0 << 0.0;
        QTest::newRow("mmHg") << "optmmHg" << 0.0 << 1.0;
        QTest::newRow("kPa") << "optkPa" << 7.51 << 0.0;
    }
    void occlusion_alone() {
        QFETCH(QString, unit);
        QFETCH(double, psi_factor);
        QFETCH(double, mmhg_factor);
        OnSim c({"--speed", "600", "--seed", "4"});
        QVERIFY(c.sim.ready());
        c.t.dialogs->queue(ss(c.work.filePath("ot.log")));
        start_live({{"chkOccl", unit, "chkTestAuto"}, -1});
        frmOTGraph* f = forms::loaded<frmOTGraph>();
        QVERIFY(f && f->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(child<QLabel>(f, "lblmmHg")->text() != "__.__", 10000);
        // Stopped here, so that the labels and the graph hold the same poll.
        f->GetDataTimer.stop();
        const double psi = child<QLabel>(f, "lblPSI")->text().toDouble();
        const double mmhg = child<QLabel>(f, "lblmmHg")->text().toDouble();
        QCOMPARE(child<QLabel>(f, "lblkPa")->text().toDouble(), mmhg / 7.51);
        const std::vector<double> graphed = f->findChild<kyt::Chart*>("OTGraph")->values_in_view(1);
        QVERIFY(!graphed.empty());
        QCOMPARE(float(graphed.back()), float(psi * psi_factor + mmhg * mmhg_factor));
        f->GetDataTimer.start();
        child<QPushButton>(f, "cmdStop")->click();
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmOTGraph>(), 10000);
        const std::string log = text_of(c.work.filePath("ot.log"));
        QVERIFY2(rows_of(log, occlusion_row_pattern) > 0, log.c_str());
        QVERIFY(log.find("OCCLUSION PRESSURE TEST") != npos && log.find("         END OF DATA\r\n") != npos);
        QVERIFY(!shared().run.ot_pending && !shared().run.ot_running);
    }

    // Single-rate for two minutes, then occlusion, each with log and summary:
    // every single-rate row in the exact columns of the log's row writer, the
    // page breaks, the closing blocks, and the summaries with the header
    // written in.
    void single_rate_then_occlusion() {
        OnSim c({"--speed", "600", "--seed", "6"});
        QVERIFY(c.sim.ready());
        const auto file = [&](const char* name) { return text_of(c.work.filePath(name)); };
        for (const char* name : {"rt.log", "ot.log", "rt.sum", "ot.sum"})
            c.t.dialogs->queue(ss(c.work.filePath(name)));
        start_live({{"chkSingle", "chkOccl", "chkReport", "chkTestAuto"}, 2});
        QVERIFY(forms::is_loaded<frmRTGraph>());
        QTRY_VERIFY_WITH_TIMEOUT(forms::is_loaded<frmOTGraph>(), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmOTGraph>() && !forms::is_loaded<frmRTGraph>(), 30000);
        const std::string rt = file("rt.log"), ot = file("ot.log");
        QVERIFY2(rows_of(rt) > 29, rt.c_str());
        for (const std::string& line : split_lines(rt)) {
            const QStringList f = QString::fromStdString(line).split(' ', Qt::SkipEmptyParts);
            if (f.size() != 5 || f[0].size() != 8 || f[0][2] != ':') continue;
            const SingleRateRow r{f[0].left(2).toInt(), f[0].mid(3, 2).toInt(), f[0].mid(6, 2).toInt(),
                                  f[1].toDouble(), f[2].toDouble(), f[3].toDouble(), f[4].toDouble()};
            QCOMPARE(single_rate_row(r), line + "\r\n");
        }
        QVERIFY(rt.find("SINGLE RATE TEST") != npos);
        QVERIFY(rt.find("\f\r\n") != npos);  // the first page is full
        QVERIFY(rt.find("         Technician: J. Doe") != npos);
        QVERIFY2(rows_of(ot, occlusion_row_pattern) > 5, ot.c_str());
        for (const std::string& log : {rt, ot}) QVERIFY(log.find("         END OF DATA\r\n") != npos);
        for (const char* sum : {"rt.sum", "ot.sum"}) {
            QVERIFY2(file(sum).find("SUMMARY") != npos, sum);
            QVERIFY2(file(sum).find("Acme Pumps") != npos, sum);
        }
        QVERIFY(!forms::is_loaded<frmSummary>());
        const RunState& run = shared().run;
        QVERIFY(!run.rt_pending && !run.rt_running && !run.ot_pending && !run.ot_running);
        QVERIFY(!run.rt_sum_running && !run.ot_sum_running);
    }

    // The device hangs up mid-test: one message, the log closed with every
    // row it had, the screens gone, the console usable.
    void analyser_hangs_up_mid_test() {
        OnSim c({"--speed", "600", "--hangup-after", "12"});
        QVERIFY(c.sim.ready());
        const QString log = c.work.filePath("cut.log");
        c.t.dialogs->queue(ss(log));
        c.t.boxes->expect();
        start_live({{"chkSingle", "chkTestAuto"}, -1});
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmRTGraph>(), 15000);
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY2(c.t.boxes->shown[0].text.find("serial") != npos, c.t.boxes->shown[0].text.c_str());
        const std::string text = text_of(log);
        QVERIFY2(rows_of(text) >= 5, text.c_str());
        const std::size_t end = text.find("END OF DATA");
        QVERIFY(end != npos);
        QCOMPARE(rows_of(text.substr(0, end)), rows_of(text));
        QVERIFY(!shared().run.rt_pending && !shared().run.rt_running);
        QVERIFY(forms::loaded<frmMain>()->isEnabled());
    }

    // The analyser falls silent: no message, the log keeps its rows, Stop
    // ends the test.
    void analyser_falls_silent() {
        OnSim c({"--speed", "600", "--silent-after", "8"});
        QVERIFY(c.sim.ready());
        const QString log = c.work.filePath("quiet.log");
        c.t.dialogs->queue(ss(log));
        start_live({{"chkSingle", "chkTestAuto"}, -1});
        frmRTGraph* f = forms::loaded<frmRTGraph>();
        QVERIFY(f);
        QTRY_VERIFY_WITH_TIMEOUT(rows_of(text_of(log)) >= 4, 10000);
        QTest::qWait(500);
        const int rows = rows_of(text_of(log));
        QTest::qWait(300);
        QCOMPARE(rows_of(text_of(log)), rows);
        QVERIFY(f->GetDataTimer.isActive());
        child<QPushButton>(f, "cmdStop")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmRTGraph>());
        QCOMPARE(rows_of(text_of(log)), rows);
        QVERIFY(text_of(log).find("END OF DATA") != npos);
    }

    // Error replies: "e" is told and the polling goes on (Cancel then throws
    // the unfinished log away); "n" ends the run and brings the main window
    // back.
    void error_replies() {
        OnSim c({"--speed", "600", "--channels", "BCD"});
        QVERIFY(c.sim.ready());
        c.t.boxes->allow_any();
        // Channel B runs, then its test is stopped behind the screen's back.
        const QString log = c.work.filePath("cut.log");
        c.t.dialogs->queue(ss(log));
        child<QRadioButton>(forms::get<frmDownload>(), "optChannelB")->setChecked(true);
        start_live({{"chkSingle", "chkTestAuto"}, -1});
        frmRTGraph* f = forms::loaded<frmRTGraph>();
        QVERIFY(f);
        QTRY_VERIFY_WITH_TIMEOUT(rows_of(text_of(log)) > 2, 10000);
        services().serial->output(command_stop('B'));
        QTRY_VERIFY_WITH_TIMEOUT(!c.t.boxes->shown.empty(), 10000);
        QCOMPARE(c.t.boxes->shown[0].text, std::string("Test or Autosequence is not running"));
        QVERIFY(f->GetDataTimer.isActive());
        child<QPushButton>(f, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmRTGraph>() && !QFileInfo::exists(log));
        // A poll sent just before Cancel may still be answered; an operator
        // takes longer than that to start the next run.
        QTest::qWait(300);
        // Channel A has no pump.
        c.t.boxes->shown.clear();
        child<QRadioButton>(forms::get<frmDownload>(), "optChannelA")->setChecked(true);
        start_live({{"chkSingle", "chkTestAuto"}, -1, false});
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmRTGraph>(), 10000);
        QString told;
        for (const auto& b : c.t.boxes->shown) told += QString::fromStdString(b.text) + " | ";
        QVERIFY2(c.t.boxes->shown.size() == 1, qPrintable(told));
        QCOMPARE(c.t.boxes->shown[0].text, std::string("Current channel selected is not connected."));
        QVERIFY(!shared().run.rt_pending && !shared().run.rt_running);
    }

    // A summary file that cannot be written: the message, and the notice's
    // Cancel leads out.
    void summary_file_unwritable() {
        OnSim c({"--speed", "600"});
        QVERIFY(c.sim.ready());
        QDir(c.work.path()).mkdir("sub");
        c.t.dialogs->queue(ss(c.work.filePath("rt.log")));
        c.t.dialogs->queue(ss(c.work.filePath("sub/rt.sum")));
        start_live({{"chkSingle", "chkReport", "chkTestAuto"}, -1});
        frmRTGraph* f = forms::loaded<frmRTGraph>();
        QVERIFY(f);
        QTRY_VERIFY_WITH_TIMEOUT(child<QLabel>(f, "lblIntFlow")->text() != "__.__", 10000);
        QDir(c.work.filePath("sub")).removeRecursively();
        c.t.boxes->expect();
        child<QPushButton>(f, "cmdStop")->click();
        QTRY_COMPARE_WITH_TIMEOUT(c.t.boxes->shown.size(), std::size_t(1), 15000);
        QCOMPARE(c.t.boxes->shown[0].text, std::string("Error writing real-time summary"));
        QVERIFY(!child<QPushButton>(f, "cmdStop")->isEnabled() && !child<QPushButton>(f, "cmdCancel")->isEnabled());
        frmSummary* notice = forms::loaded<frmSummary>();
        QVERIFY(notice && notice->isVisible());
        child<QPushButton>(notice, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmRTGraph>() && !forms::is_loaded<frmSummary>());
        QVERIFY(text_of(c.work.filePath("rt.log")).find("END OF DATA") != npos);
    }

    // A console killed outright mid-test leaves a log whose rows are all
    // there, and the console's log reader takes it.
    void killed_mid_test_keeps_its_rows() {
        Sim sim({"--speed", "600"});
        QVERIFY(sim.ready());
        QTemporaryDir dir;
        const QString log = dir.filePath("killed.log");
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {"--live-child", sim.link, log});
        QVERIFY(child.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(rows_of(text_of(log)) >= 40, 20000);
        child.kill();
        QVERIFY(child.waitForFinished());
        const std::string text = text_of(log);
        QVERIFY(text.find("END OF DATA") == npos);
        QVERIFY(text.ends_with("\r\n"));  // the last row is whole
        const LogReadResult read = read_log(text);
        QVERIFY(read.accepted());
        QCOMPARE(read.series.graph_last_index + 1, rows_of(text));
    }

    void cleanup() { close_console(); }
};

// The console of the kill drill, in a process of its own: a single-rate test
// on the simulator behind `link`, logged to `log`, until the process is
// killed.
int run_live_child(int argc, char** argv) {
    QApplication app(argc, argv);
    register_all_forms();
    Console c;
    start_console(c, QString::fromLocal8Bit(argv[2]));
    c.t.boxes->allow_any();
    c.t.dialogs->queue(argv[3]);
    FastScreens fast;
    start_live({{"chkSingle", "chkTestAuto"}, -1});
    return app.exec();
}

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == "--live-child") return run_live_child(argc, argv);
    QApplication app(argc, argv);
    tst_live_e2e t;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&t, argc, argv);
}

#include "tst_live_e2e.moc"
