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

Folders all_files() {
    Folders f;
    f.rt_log_file = "/w/rt.log";
    f.rt_sum_file = "/w/rt.sum";
    f.ot_log_file = "/w/ot.log";
    f.ot_sum_file = "/w/ot.sum";
    return f;
}

QStringList described(const RunActions& actions) {
    QStringList out;
    for (const RunAction& a : actions) out << QString::fromStdString(describe(a)).replace("\r", "\\r");
    return out;
}

}  // namespace

class tst_run_phases : public QObject {
    Q_OBJECT
private slots:
    // A single-rate run's end with the summary left to the analyser's printer (the simulator runs save it).
    void summary_to_the_printer() {
        RunState run = state_of("rt_running");
        RunChoice choice;
        choice.channel = 'B';
        choice.summary_to_printer = true;
        QCOMPARE(described(beginnextproc(run, all_files(), choice)),
                 (QStringList{"stop_timer frmRTGraph.GetDataTimer", "stop_timer frmRTGraph.DurationTimer", "stop_current_test",
                              "send PRB1\\r", "unload_form frmRTGraph", "restore_pointer frmRTGraph"}));
        QCOMPARE(flags_of(run), QString());
    }

    // Cancel: every timer stopped, the unfinished files thrown away.
    void stop_all_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QStringList>("deleted");  // what goes besides the timers, the stop and the main window
        QTest::newRow("single rate with its log: the log is thrown away")
            << "rt_running rt_pending rt_selected rt_log_on" << QStringList{"discard_log frmRTGraph /w/rt.log"};
        QTest::newRow("occlusion running: both summaries' and its log's files go")
            << "ot_running ot_pending ot_selected rt_sum_on ot_log_on rt_log_on"
            << QStringList{"discard_log frmRTGraph /w/rt.log", "delete_file /w/rt.sum",
                           "discard_log frmOTGraph /w/ot.log"};
    }
    void stop_all() {
        QFETCH(QString, before);
        QFETCH(QStringList, deleted);
        RunState run = state_of(before);
        const QStringList timers = {"stop_timer frmRTGraph.GetDataTimer", "stop_timer frmRTGraph.GetSumTimer",
                                    "stop_timer frmRTGraph.DurationTimer", "stop_timer frmOTGraph.GetDataTimer",
                                    "stop_timer frmOTGraph.GetSumTimer", "stop_timer frmOTGraph.DurationTimer"};
        QCOMPARE(described(stopalltests(run, all_files())),
                 timers + QStringList{"stop_current_test"} + deleted + QStringList{"show_form frmMain"});
        QCOMPARE(flags_of(run), QString());
    }
};

QTEST_APPLESS_MAIN(tst_run_phases)
#include "tst_run_phases.moc"
