#include <QtTest>

#include <QLabel>
#include <QPushButton>

#include "acquisition/frmDownload.h"
#include "acquisition/frmHeader.h"
#include "acquisition/logformat.h"
#include "common/file_text.h"
#include "reports/frmReports.h"
#include "common/forms.h"
#include "common/shared_state.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

// The controls whose state the rules govern, and those that are options.
const QStringList criteria = {"fraRealTime", "chkSingle",  "optIndefinite", "optDuration", "cmbDuration",
                              "chkOccl",     "cmbOccl",    "optPSI",        "chkReport",   "optPrinter",
                              "optFile",     "cmbPoll",    "chkTestAuto"};
const QStringList options = {"chkSaveFile", "chkSingle", "optIndefinite", "optDuration",
                             "chkOccl",     "optPSI",    "chkReport",     "optPrinter", "optFile"};

// Each step presses a control by name.
void operate(frmDownload* f, const QStringList& steps) {
    for (const QString& step : steps) test::run_script(f, {"press:" + step});
}

// The controls of `names` that are on (checked, or else enabled), sorted.
QStringList on_of(frmDownload* f, const QStringList& names, bool checked) {
    QStringList on;
    for (const QString& name : names) {
        auto* w = f->findChild<QWidget*>(name);
        if (checked ? qobject_cast<QAbstractButton*>(w)->isChecked() : w->isEnabled()) on << name;
    }
    on.sort();
    return on;
}

const QString no_mode = "You must select a Channel or a Mode type.";
const QString incomplete = "You must complete the Real Time criteria.";
const QString start_by_hand = "Please start Marovant and then press 'OK'";
const QString gave_up = "Saving file cancelled";

// What a log file holds after the start of a run: "" when it is empty, else
// the name of its test as its head gives it; "missing" when there is none.
QString log_state(const QString& path) {
    const auto text = read_text_file(path.toStdString());
    if (!text) return "missing";
    if (text->empty()) return "";
    for (const char* test : {"SINGLE RATE TEST", "OCCLUSION PRESSURE TEST"})
        if (text->find(test) != std::string::npos) return test;
    return "other";
}

}  // namespace

class tst_download : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        forms::register_form<frmReports>();
        // The live test screens' names, so that the dialog offers real time.
        for (const char* screen : {"frmRTGraph", "frmOTGraph"})
            forms::register_factory(screen, [] { return new QWidget; });
    }

    void cleanup() {
        forms::unload<frmDownload>();
        test::flush_deletes();
        for (LogFile* f : {&run_logs().rt_file, &run_logs().ot_file}) f->close();
    }

    // The criteria open and close as the operator clicks; the options the
    // rules turn on (Run Indefinitely, PSI, Summary to File) stay on when
    // their block closes.
    void enable_rules_data() {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QStringList>("enabled");
        QTest::addColumn<QStringList>("on");
        const QStringList rt = {"fraRealTime", "chkSingle", "chkOccl"};
        const QStringList tests = {"chkReport", "cmbPoll", "chkTestAuto"};
        const QStringList single = rt + QStringList{"optIndefinite", "optDuration"} + tests;
        const QStringList occl = rt + QStringList{"cmbOccl", "optPSI"} + tests;
        QTest::newRow("fresh form") << QStringList{} << QStringList{} << QStringList{"chkSaveFile"};
        QTest::newRow("Real-Time opens the two tests")
            << QStringList{"optRealTime"} << rt << QStringList{"chkSaveFile"};
        QTest::newRow("single rate runs indefinitely")
            << QStringList{"optRealTime", "chkSingle"} << single
            << QStringList{"chkSaveFile", "chkSingle", "optIndefinite"};
        QTest::newRow("Stop Test After opens the length list")
            << QStringList{"optRealTime", "chkSingle", "optDuration"} << single + QStringList{"cmbDuration"}
            << QStringList{"chkSaveFile", "chkSingle", "optDuration"};
        QTest::newRow("Run Indefinitely closes it again")
            << QStringList{"optRealTime", "chkSingle", "optDuration", "optIndefinite"} << single
            << QStringList{"chkSaveFile", "chkSingle", "optIndefinite"};
        QTest::newRow("occlusion chooses PSI") << QStringList{"optRealTime", "chkOccl"} << occl
                                               << QStringList{"chkSaveFile", "chkOccl", "optPSI"};
        QTest::newRow("report off keeps the printer chosen")
            << QStringList{"optRealTime", "chkOccl", "chkReport", "optPrinter", "chkReport"} << occl
            << QStringList{"chkSaveFile", "chkOccl", "optPSI", "optPrinter"};
        QTest::newRow("single off with occlusion on keeps the test options")
            << QStringList{"optRealTime", "chkSingle", "chkOccl", "chkSingle"} << occl
            << QStringList{"chkSaveFile", "optIndefinite", "chkOccl", "optPSI"};
        QTest::newRow("both tests off take the report off")
            << QStringList{"optRealTime", "chkSingle", "chkReport", "chkSingle"} << rt
            << QStringList{"chkSaveFile", "optIndefinite", "optFile"};
        QTest::newRow("another mode closes the criteria, leaving the ticks")
            << QStringList{"optRealTime", "chkSingle", "chkOccl", "optDuration", "chkReport", "optGetLog"}
            << QStringList{} << QStringList{"chkSaveFile", "chkSingle", "optDuration", "chkOccl", "optPSI", "optFile"};
        QTest::newRow("Real-Time again starts with both tests off")
            << QStringList{"optRealTime", "chkSingle", "chkOccl", "optDuration", "chkReport", "optGetLog",
                           "optRealTime"}
            << rt << QStringList{"chkSaveFile", "optDuration", "optPSI", "optFile"};
    }
    void enable_rules() {
        QFETCH(QStringList, clicks);
        QFETCH(QStringList, enabled);
        QFETCH(QStringList, on);
        test::install_test_services();
        frmDownload* f = test::open_fresh<frmDownload>();
        operate(f, clicks);
        enabled.sort();
        on.sort();
        QCOMPARE(on_of(f, criteria, false), enabled);
        QCOMPARE(on_of(f, options, true), on);
    }

    // OK: the two error boxes, the choice in the program-wide state, and a
    // run that does not go on, which keeps the dialog (the run's start is in
    // real_time_start and in the simulator runs).
    void ok_outcomes_data() {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<int>("accepted");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("channel");
        QTest::newRow("no mode; the channel is still read")
            << QStringList{"optChannelC", "CmdOK"} << QStringList{no_mode} << 0 << " " << "C";
        QTest::newRow("Real-Time with neither test")
            << QStringList{"optRealTime", "CmdOK"} << QStringList{incomplete} << 0 << "3" << "A";
        QTest::newRow("a given-up file dialog keeps the dialog open")
            << QStringList{"optChannelB", "optGetLog", "CmdOK"} << QStringList{gave_up} << 1 << "2" << "B";
        QTest::newRow("an earlier complete OK lets an incomplete one pass")
            << QStringList{"chkSaveFile", "optRealTime", "chkSingle", "chkTestAuto", "CmdOK", "chkSingle", "CmdOK"}
            << QStringList{} << 2 << "3" << "A";
    }
    void ok_outcomes() {
        QFETCH(QStringList, clicks);
        QFETCH(QStringList, boxes);
        QFETCH(int, accepted);
        QFETCH(QString, mode);
        QFETCH(QString, channel);
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        shared().run.summary_header_open = true;  // left from an earlier run
        frmDownload* f = test::open_fresh<frmDownload>();
        QVERIFY(!shared().run.summary_header_open);
        int signals_seen = 0;
        connect(f, &frmDownload::options_accepted, f, [&] {
            ++signals_seen;
            // The run does not go on, and leaves nothing under way.
            RunState& run = shared().run;
            run.download_ok = run.rt_pending = run.ot_pending = run.rt_running = run.ot_running = false;
        });
        // A report on screen with its Print entry on.
        QWidget* report = forms::get("frmReports");
        QAction* print = report->findChild<QAction*>("mnuPrint");
        print->setEnabled(true);
        t.boxes->expect(static_cast<std::size_t>(boxes.size()));
        operate(f, clicks);
        QCOMPARE(print->isEnabled(), !boxes.contains(no_mode));
        forms::unload("frmReports");
        QCOMPARE(int(t.boxes->shown.size()), int(boxes.size()));
        for (int i = 0; i < boxes.size(); ++i) {
            QCOMPARE(QString::fromStdString(t.boxes->shown[i].text), boxes[i]);
            if (boxes[i].startsWith("You must")) test::expect_box(t.boxes->shown[i], boxes[i].toStdString(), 16, "ERROR");
        }
        QCOMPARE(signals_seen, accepted);
        QCOMPARE(QString(QChar(shared().run.download_mode)), mode);
        QCOMPARE(QString(QChar(shared().port.channel)), channel);
        QVERIFY(forms::is_loaded<frmDownload>() && !f->isHidden());
        QVERIFY(!shared().run.summary_header_open);
    }

    // The start of a live test run: the Save dialogs in order, each of which
    // can end it, the head of the first test's log, the box that asks for a
    // start by hand, and the command that starts or joins the test.
    void real_time_start_data() {
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<QStringList>("names");   // answers of the Save dialogs; "" gives up
        QTest::addColumn<QString>("set_rate");    // typed into the header; none asked when empty
        QTest::addColumn<QStringList>("titles");  // of the Save dialogs shown
        QTest::addColumn<QStringList>("boxes");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("pending");     // "rt", "ot" or ""
        QTest::addColumn<QStringList>("logs");    // state of each named file afterwards
        const QString rt = "SAVE REAL TIME DATA", ot = "SAVE REAL TIME OCCLUSION DATA";
        const QString rt_sum = "SAVE REAL TIME DATA SUMMARY";
        QTest::newRow("single rate with a header, started by hand")
            << QStringList{"optRealTime", "chkSingle", "CmdOK"} << QStringList{"a.log"} << "100"
            << QStringList{rt} << QStringList{start_by_hand} << "GRA1\r" << "rt"
            << QStringList{"SINGLE RATE TEST"};
        QTest::newRow("occlusion unsaved carries the test number left as it was")
            << QStringList{"chkSaveFile", "optRealTime", "chkOccl", "CmdOK"} << QStringList{} << ""
            << QStringList{} << QStringList{start_by_hand} << "GRA0\r" << "ot" << QStringList{};
        QTest::newRow("summary to the printer asks no summary name")
            << QStringList{"optRealTime", "chkSingle", "chkReport", "optPrinter", "chkTestAuto", "CmdOK"}
            << QStringList{"a.log"} << "" << QStringList{rt} << QStringList{} << "RTA1\r" << "rt"
            << QStringList{"SINGLE RATE TEST"};
        QTest::newRow("the summary given up ends the run before any head")
            << QStringList{"optRealTime", "chkSingle", "chkReport", "CmdOK"} << QStringList{"a.log", ""} << ""
            << QStringList{rt, rt_sum} << QStringList{gave_up} << "" << "" << QStringList{""};
        QTest::newRow("a head that cannot be written is asked again")
            << QStringList{"optRealTime", "chkSingle", "chkTestAuto", "CmdOK"} << QStringList{"/dev/full", "c.log"}
            << "" << QStringList{rt, rt} << QStringList{"Bad file name for real-time data"} << "RTA1\r" << "rt"
            << QStringList{"", "SINGLE RATE TEST"};
        QTest::newRow("giving up the new name ends the run")
            << QStringList{"optRealTime", "chkOccl", "chkTestAuto", "CmdOK"} << QStringList{"/dev/full", ""} << ""
            << QStringList{ot, ot} << QStringList{"Error writing occlusion data", gave_up} << "" << ""
            << QStringList{""};
    }
    void real_time_start() {
        QFETCH(QStringList, clicks);
        QFETCH(QStringList, names);
        QFETCH(QString, set_rate);
        QFETCH(QStringList, titles);
        QFETCH(QStringList, boxes);
        QFETCH(QString, sent);
        QFETCH(QString, pending);
        QFETCH(QStringList, logs);
        auto t = test::install_test_services();
        t.serial->set_port_open(true);
        QTemporaryDir work;
        const auto path = [&](const QString& name) { return name.startsWith('/') ? name : work.filePath(name); };
        for (const QString& name : names) t.dialogs->queue(name.isEmpty() ? "" : path(name).toStdString());
        shared().run.header_wanted = !set_rate.isEmpty();
        bool legend_shown = false;
        if (!set_rate.isEmpty())
            test::when_shown("frmHeader", [&](QWidget* h) {
                legend_shown = h->findChild<QLabel*>("lblMandatoryFields")->isVisible();
                h->findChild<QComboBox*>("cmbHdr_4")->setEditText(set_rate);
                h->findChild<QPushButton*>("cmdContinue")->click();
            });
        t.boxes->expect(static_cast<std::size_t>(boxes.size()));
        frmDownload* f = test::open_fresh<frmDownload>();
        operate(f, clicks);

        QStringList asked;
        for (const auto& r : t.dialogs->requests) asked << QString::fromStdString(r.dialog.title);
        QCOMPARE(asked, titles);
        QStringList told;
        for (const auto& b : t.boxes->shown) told << QString::fromStdString(b.text);
        QCOMPARE(told, boxes);
        QStringList commands;
        for (const std::string& c : t.serial->commands) commands << QString::fromStdString(c);
        QCOMPARE(commands.join(""), sent);
        const RunState& run = shared().run;
        QCOMPARE(run.rt_pending, pending == "rt");
        QCOMPARE(run.ot_pending, pending == "ot");
        QCOMPARE(run.download_ok, !sent.isEmpty());
        QCOMPARE(f->isHidden(), !sent.isEmpty());
        QCOMPARE(legend_shown, !set_rate.isEmpty());
        for (LogFile* file : {&run_logs().rt_file, &run_logs().ot_file}) file->close();
        for (int i = 0; i < logs.size(); ++i)
            if (!names[i].startsWith('/')) QCOMPARE(log_state(path(names[i])), logs[i]);  // not the full device
        if (!set_rate.isEmpty())
            QVERIFY(read_text_file(path(names[0]).toStdString())->find("Set Rate(s): 100__") != std::string::npos);
    }
};

QTEST_MAIN(tst_download)
#include "tst_download.moc"
