// Live tests from the download dialog against the simulated analyser on a real serial line.

#include <QtTest>

#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>

#include "acquisition/frmDownload.h"
#include "acquisition/frmOTGraph.h"
#include "acquisition/frmRTGraph.h"
#include "app/form_registry.h"
#include "common/text.h"
#include "link/protocol.h"
#include "support/console_e2e.h"

using namespace kyt;
using namespace kyt::test;

namespace {

// OK in real-time mode with `checks` on; duration_item >= 0: "Stop Test After".
void start_live(const QStringList& checks, bool save = true, int duration_item = -1) {
    if (save) fill_header_when_shown();
    frmDownload* d = forms::get<frmDownload>();
    d->show();
    child<QRadioButton>(d, "optRealTime")->setChecked(true);
    child<QCheckBox>(d, "chkSaveFile")->setChecked(save);
    for (const QString& name : checks) child<QAbstractButton>(d, qPrintable(name))->setChecked(true);
    if (duration_item >= 0) {
        child<QRadioButton>(d, "optDuration")->setChecked(true);
        child<QComboBox>(d, "cmbDuration")->setCurrentIndex(duration_item);
    }
    child<QPushButton>(d, "CmdOK")->click();
}

// The console on a simulator, its test screens polling every 40 ms, a test second 20 ms.
struct OnSim : SimConsole {
    QTimer watch;
    explicit OnSim(const QStringList& args) : SimConsole(args) {
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

// The rows of a log, by default of a single-rate log.
int rows_of(const std::string& log, const char* pattern = R"(^ {9}\d\d:\d\d:\d\d {2}\S+ {3}\S+ {4}\S+ {5}\S+$)") {
    const QRegularExpression row(pattern);
    int rows = 0;
    for (const std::string& line : split_lines(log)) rows += row.match(QString::fromStdString(line)).hasMatch();
    return rows;
}

constexpr auto npos = std::string::npos;

}  // namespace

class tst_live_e2e : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }
    void cleanup() { close_console(); }

    // Single-rate for two minutes, then occlusion, each with log and summary.
    void single_rate_then_occlusion() {
        OnSim c({"--speed", "600", "--seed", "6"});
        QVERIFY(c.sim.ready());
        const auto file = [&](const char* name) { return text_of(c.work.filePath(name)); };
        for (const char* name : {"rt.log", "ot.log", "rt.sum", "ot.sum"}) c.t.dialogs->queue(ss(c.work.filePath(name)));
        start_live({"chkSingle", "chkOccl", "chkReport", "chkTestAuto"}, true, 2);
        QTRY_VERIFY_WITH_TIMEOUT(forms::is_loaded<frmOTGraph>(), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmOTGraph>() && !forms::is_loaded<frmRTGraph>(), 30000);
        const std::string rt = file("rt.log"), ot = file("ot.log");
        QVERIFY2(rows_of(rt) > 29, rt.c_str());
        QVERIFY(rt.find("SINGLE RATE TEST") != npos && rt.find("\f\r\n") != npos && rt.find("         Technician: J. Doe") != npos);
        QVERIFY2(rows_of(ot, R"(^ {16}\d\d:\d\d {12}\d\d\.\d\d {6}\d{3})") > 5, ot.c_str());
        for (const std::string& log : {rt, ot}) QVERIFY(log.find("         END OF DATA\r\n") != npos);
        for (const char* sum : {"rt.sum", "ot.sum"}) QVERIFY2(file(sum).find("SUMMARY") != npos && file(sum).find("Acme Pumps") != npos, sum);
        const RunState& run = shared().run;
        QVERIFY(!run.rt_pending && !run.rt_running && !run.ot_pending && !run.ot_running && !run.rt_sum_running && !run.ot_sum_running);
    }

    // The device gone mid-test: one message, the log closed with every row it had.
    void analyser_hangs_up_mid_test() {
        OnSim c({"--speed", "600", "--hangup-after", "12"});
        QVERIFY(c.sim.ready());
        const QString log = c.work.filePath("cut.log");
        c.t.dialogs->queue(ss(log));
        c.t.boxes->expect();
        start_live({"chkSingle", "chkTestAuto"});
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmRTGraph>(), 15000);
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY2(c.t.boxes->shown[0].text.find("serial") != npos, c.t.boxes->shown[0].text.c_str());
        const std::string text = text_of(log);
        QVERIFY2(rows_of(text) >= 5, text.c_str());
        QCOMPARE(rows_of(text.substr(0, text.find("END OF DATA"))), rows_of(text));
        QVERIFY(text.find("END OF DATA") != npos);
        QVERIFY(!shared().run.rt_pending && !shared().run.rt_running);
        QVERIFY(forms::loaded<frmMain>()->isEnabled());
    }

    // On a line that splits replies: the dialog opened again mid-test stays
    // loaded at Cancel and starts no second run at OK (a fault once found); an
    // "e" reply is told and the polling goes on, Cancel then throws the
    // unfinished log away; "n" (no pump) ends the run.
    void error_replies_and_cancel() {
        OnSim c({"--speed", "600", "--channels", "BCD", "--split"});
        QVERIFY(c.sim.ready());
        c.t.boxes->allow_any();
        const QString log = c.work.filePath("cut.log");
        c.t.dialogs->queue(ss(log));
        child<QRadioButton>(forms::get<frmDownload>(), "optChannelB")->setChecked(true);
        start_live({"chkSingle", "chkTestAuto"});
        frmRTGraph* f = forms::loaded<frmRTGraph>();
        QVERIFY(f);
        QTRY_VERIFY_WITH_TIMEOUT(rows_of(text_of(log)) > 2, 10000);
        QCOMPARE(child<QLabel>(f, "lblTimeLeft")->text(), QString("N/A"));
        frmDownload* d = forms::loaded<frmDownload>();
        d->show();
        child<QPushButton>(d, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(forms::is_loaded<frmDownload>() && d->isHidden());
        d->show();
        child<QPushButton>(d, "CmdOK")->click();
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QVERIFY(f->GetDataTimer.isActive() && shared().run.rt_running);
        c.t.boxes->shown.clear();
        services().serial->output(command_stop('B'));  // the test stopped behind the screen's back
        QTRY_VERIFY_WITH_TIMEOUT(!c.t.boxes->shown.empty(), 10000);
        QCOMPARE(c.t.boxes->shown[0].text, std::string("Test or Autosequence is not running"));
        QVERIFY(f->GetDataTimer.isActive());
        child<QPushButton>(f, "cmdCancel")->click();
        flush_deletes();
        QVERIFY(!forms::is_loaded<frmRTGraph>() && !QFileInfo::exists(log));
        QTest::qWait(300);  // a poll sent just before Cancel may still be answered
        c.t.boxes->shown.clear();
        child<QRadioButton>(forms::get<frmDownload>(), "optChannelA")->setChecked(true);
        start_live({"chkSingle", "chkTestAuto"}, false);
        QTRY_VERIFY_WITH_TIMEOUT(!forms::is_loaded<frmRTGraph>(), 10000);
        QCOMPARE(c.t.boxes->shown.size(), std::size_t(1));
        QCOMPARE(c.t.boxes->shown[0].text, std::string("Current channel selected is not connected."));
        QVERIFY(!shared().run.rt_pending && !shared().run.rt_running);
    }
};

QTEST_MAIN(tst_live_e2e)
#include "tst_live_e2e.moc"
