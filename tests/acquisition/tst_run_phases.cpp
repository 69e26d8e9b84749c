// A run's phases: the flags before a transition, the actions for the forms, the flags after.

#include <QtTest>

#include <map>

#include "acquisition/run_phases.h"

using namespace kyt;

namespace {

const std::map<QString, bool RunState::*> flag_members = {
    {"rt_running", &RunState::rt_running},   {"rt_sum_running", &RunState::rt_sum_running}, {"rt_pending", &RunState::rt_pending},
    {"ot_running", &RunState::ot_running},   {"ot_sum_running", &RunState::ot_sum_running}, {"ot_pending", &RunState::ot_pending},
    {"rt_selected", &RunState::rt_selected}, {"rt_log_on", &RunState::rt_log_on},           {"rt_sum_on", &RunState::rt_sum_on},
    {"ot_selected", &RunState::ot_selected}, {"ot_log_on", &RunState::ot_log_on},           {"ot_sum_on", &RunState::ot_sum_on},
    {"first_buffer", &RunState::first_buffer}};

RunState state_of(const QString& flags) {
    RunState run;
    run.first_buffer = false;
    for (const QString& name : flags.split(' ', Qt::SkipEmptyParts)) run.*flag_members.at(name) = true;
    return run;
}

QString flags_of(const RunState& run) {
    QStringList set;
    for (const auto& [name, member] : flag_members)
        if (run.*member) set << name;
    return set.join(' ');
}

// The files named by "rt_log rt_sum ot_log ot_sum", those not named left empty.
Folders files_of(const QString& names) {
    Folders f;
    f.rt_log_file = names.contains("rt_log") ? "/w/rt.log" : "";
    f.rt_sum_file = names.contains("rt_sum") ? "/w/rt.sum" : "";
    f.ot_log_file = names.contains("ot_log") ? "/w/ot.log" : "";
    f.ot_sum_file = names.contains("ot_sum") ? "/w/ot.sum" : "";
    return f;
}

QStringList described(const RunActions& actions) {
    QStringList out;
    for (const RunAction& a : actions) out << QString::fromStdString(describe(a)).replace("\r", "\\r");
    return out;
}

const QStringList rt_ends = {"stop_timer frmRTGraph.GetDataTimer", "stop_timer frmRTGraph.DurationTimer",
                             "stop_current_test"};
const QString restore = "restore_pointer frmRTGraph";

}  // namespace

class tst_run_phases : public QObject {
    Q_OBJECT
private slots:
    // The phases the runs against the simulator in tst_live_e2e do not reach.
    void next_phase_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("files");
        QTest::addColumn<bool>("printer");  // the summary printed by the analyser
        QTest::addColumn<QStringList>("actions");
        QTest::addColumn<QString>("after");
        QTest::newRow("single rate ends, summary printed by the analyser")
            << "rt_running" << "" << true
            << rt_ends + QStringList{"send PRB1\\r", "unload_form frmRTGraph", restore} << "";
        QTest::newRow("summary wanted without a file: its phase, nothing shown")
            << "rt_running rt_sum_on" << "" << false << rt_ends + QStringList{restore} << "rt_sum_on rt_sum_running";
        QTest::newRow("occlusion ends without Save to File: the log stays open")
            << "ot_running ot_pending ot_log_on" << "ot_log" << false
            << QStringList{"stop_current_test", "stop_timer frmOTGraph.GetDataTimer",
                           "stop_timer frmOTGraph.DurationTimer", "unload_form frmOTGraph", restore}
            << "ot_log_on";
        QTest::newRow("the single-rate phase is decided first")
            << "rt_running ot_running" << "" << false << rt_ends + QStringList{"unload_form frmRTGraph", restore}
            << "ot_running";
    }
    void next_phase() {
        QFETCH(QString, before);
        QFETCH(QString, files);
        QFETCH(bool, printer);
        QFETCH(QStringList, actions);
        QFETCH(QString, after);
        RunState run = state_of(before);
        RunChoice choice;
        choice.channel = 'B';
        choice.summary_to_printer = printer;
        QCOMPARE(described(beginnextproc(run, files_of(files), choice)), actions);
        QCOMPARE(flags_of(run), after);
    }

    // Cancel: every timer stopped, the unfinished files thrown away.
    void stop_all_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QStringList>("deleted");  // what goes besides the timers, the stop and the main window
        QTest::addColumn<QString>("after");
        QTest::newRow("single rate with its log: the log is thrown away")
            << "rt_running rt_pending rt_selected rt_log_on" << QStringList{"discard_log frmRTGraph /w/rt.log"} << "";
        QTest::newRow("occlusion running: both summaries' and its log's files go")
            << "ot_running ot_pending ot_selected rt_sum_on ot_log_on rt_log_on"
            << QStringList{"discard_log frmRTGraph /w/rt.log", "delete_file /w/rt.sum",
                           "discard_log frmOTGraph /w/ot.log"}
            << "";
        QTest::newRow("the occlusion summary phase is left as it is") << "ot_sum_running ot_sum_on" << QStringList{}
                                                                      << "ot_sum_running";
    }
    void stop_all() {
        QFETCH(QString, before);
        QFETCH(QStringList, deleted);
        QFETCH(QString, after);
        RunState run = state_of(before);
        const QStringList timers = {"stop_timer frmRTGraph.GetDataTimer", "stop_timer frmRTGraph.GetSumTimer",
                                    "stop_timer frmRTGraph.DurationTimer", "stop_timer frmOTGraph.GetDataTimer",
                                    "stop_timer frmOTGraph.GetSumTimer", "stop_timer frmOTGraph.DurationTimer"};
        const Folders files = files_of("rt_log rt_sum ot_log ot_sum");
        QCOMPARE(described(stopalltests(run, files)),
                 timers + QStringList{"stop_current_test"} + deleted + QStringList{"show_form frmMain"});
        QCOMPARE(flags_of(run), after);
    }
};

QTEST_APPLESS_MAIN(tst_run_phases)
#include "tst_run_phases.moc"
