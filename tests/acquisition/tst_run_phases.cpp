// The phases of a run as tables: the flags and files before a transition,
// the actions the forms must carry out, and the flags after.

#include <QtTest>

#include <map>

#include "acquisition/run_phases.h"

using namespace kyt;

namespace {

const std::map<QString, bool RunState::*>& flag_members() {
    static const std::map<QString, bool RunState::*> m = {
        {"rt_running", &RunState::rt_running},         {"rt_sum_running", &RunState::rt_sum_running},
        {"ot_running", &RunState::ot_running},         {"ot_sum_running", &RunState::ot_sum_running},
        {"rt_pending", &RunState::rt_pending},         {"ot_pending", &RunState::ot_pending},
        {"rt_selected", &RunState::rt_selected},       {"ot_selected", &RunState::ot_selected},
        {"rt_log_on", &RunState::rt_log_on},           {"ot_log_on", &RunState::ot_log_on},
        {"rt_sum_on", &RunState::rt_sum_on},           {"ot_sum_on", &RunState::ot_sum_on},
        {"first_buffer", &RunState::first_buffer},
    };
    return m;
}

RunState state_of(const QString& flags) {
    RunState run;
    run.first_buffer = false;
    for (const QString& name : flags.split(' ', Qt::SkipEmptyParts)) run.*flag_members().at(name) = true;
    return run;
}

QString flags_of(const RunState& run) {
    QStringList set;
    for (const auto& [name, member] : flag_members())
        if (run.*member) set << name;
    return set.join(' ');
}

Folders files_of(const QString& names) {
    Folders f;
    for (const QString& n : names.split(' ', Qt::SkipEmptyParts)) {
        if (n == "rt_log") f.rt_log_file = "/w/rt.log";
        if (n == "rt_sum") f.rt_sum_file = "/w/rt.sum";
        if (n == "ot_log") f.ot_log_file = "/w/ot.log";
        if (n == "ot_sum") f.ot_sum_file = "/w/ot.sum";
    }
    return f;
}

RunChoice choice_of(const QString& words) {
    RunChoice c;
    c.channel = 'B';
    c.save_to_file = words.contains("save");
    c.summary_to_printer = words.contains("printer");
    return c;
}

QStringList described(const RunActions& actions) {
    QStringList out;
    for (const RunAction& a : actions) out << QString::fromStdString(describe(a)).replace("\r", "\\r");
    return out;
}

const QStringList rt_ends = {"stop_timer frmRTGraph.GetDataTimer", "stop_timer frmRTGraph.DurationTimer",
                             "stop_current_test"};
const QStringList occlusion_starts = {"write_ot_head",
                                      "unload_form frmRTGraph",
                                      "reset_comm_buffers",
                                      "start_timer frmOTGraph.GetDataTimer",
                                      "show_form frmOTGraph",
                                      "send RTB4\\r"};
const QStringList rt_summary_starts = {"set_caption frmSummary Single-Rate", "show_form frmSummary",
                                       "busy frmRTGraph", "create_summary_file frmRTGraph",
                                       "start_timer frmRTGraph.GetSumTimer"};
const QString restore = "restore_pointer frmRTGraph";

}  // namespace

class tst_run_phases : public QObject {
    Q_OBJECT
private slots:
    // The summaries' ends, and an occlusion log closed at its end, run
    // against the simulator in tst_live_e2e.
    void next_phase_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("files");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QStringList>("actions");
        QTest::addColumn<QString>("after");

        QTest::newRow("single rate ends, log kept, nothing follows")
            << "rt_running rt_pending rt_selected rt_log_on" << "rt_log" << "save"
            << QStringList{"close_data_file frmRTGraph"} + rt_ends + QStringList{"unload_form frmRTGraph", restore}
            << "rt_log_on";
        QTest::newRow("single rate ends, log on but no file: nothing to close")
            << "rt_running rt_log_on" << "" << "save" << rt_ends + QStringList{"unload_form frmRTGraph", restore}
            << "rt_log_on";
        QTest::newRow("single rate ends, summary printed by the analyser")
            << "rt_running" << "" << "printer"
            << rt_ends + QStringList{"send PRB1\\r", "unload_form frmRTGraph", restore} << "";
        QTest::newRow("single rate ends, summary to a file")
            << "rt_running rt_sum_on" << "rt_sum" << "save" << rt_ends + rt_summary_starts + QStringList{restore}
            << "first_buffer rt_sum_on rt_sum_running";
        QTest::newRow("summary wanted without a file: its phase, nothing shown")
            << "rt_running rt_sum_on" << "" << "" << rt_ends + QStringList{restore} << "rt_sum_on rt_sum_running";
        QTest::newRow("single rate ends, occlusion follows")
            << "rt_running rt_selected ot_selected" << "" << "save" << rt_ends + occlusion_starts + QStringList{restore}
            << "ot_pending ot_running ot_selected";
        QTest::newRow("single-rate summary ends, occlusion follows without a log")
            << "rt_sum_running ot_selected" << "" << ""
            << QStringList{"unload_form frmSummary", "stop_timer frmRTGraph.GetSumTimer", restore,
                           "unload_form frmRTGraph"} +
                   occlusion_starts.mid(1) + QStringList{restore}
            << "ot_pending ot_running ot_selected";
        QTest::newRow("occlusion ends without Save to File: the log stays open")
            << "ot_running ot_pending ot_log_on" << "ot_log" << ""
            << QStringList{"stop_current_test", "stop_timer frmOTGraph.GetDataTimer",
                           "stop_timer frmOTGraph.DurationTimer", "unload_form frmOTGraph", restore}
            << "ot_log_on";
        QTest::newRow("occlusion ends, summary to a file, printed too")
            << "ot_running ot_pending ot_sum_on" << "ot_sum" << "printer"
            << QStringList{"stop_current_test", "send PRB1\\r", "stop_timer frmOTGraph.GetDataTimer",
                           "stop_timer frmOTGraph.DurationTimer", "set_caption frmSummary Occlusion",
                           "show_form frmSummary", "busy frmOTGraph", "create_summary_file frmOTGraph",
                           "start_timer frmOTGraph.GetSumTimer", restore}
            << "first_buffer ot_pending ot_sum_on ot_sum_running";
        QTest::newRow("the single-rate phase is decided first")
            << "rt_running ot_running" << "" << "" << rt_ends + QStringList{"unload_form frmRTGraph", restore}
            << "ot_running";
        QTest::newRow("no phase: only the pointer") << "" << "" << "" << QStringList{restore} << "";
    }
    void next_phase() {
        QFETCH(QString, before);
        QFETCH(QString, files);
        QFETCH(QString, choice);
        QFETCH(QStringList, actions);
        QFETCH(QString, after);
        RunState run = state_of(before);
        QCOMPARE(described(beginnextproc(run, files_of(files), choice_of(choice))), actions);
        QCOMPARE(flags_of(run), after);
    }

    void stop_all_data() {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QStringList>("deleted");  // what goes besides the timers, the stop and the main window
        QTest::addColumn<QString>("after");
        QTest::newRow("single rate with its log: the log is thrown away")
            << "rt_running rt_pending rt_selected rt_log_on" << QStringList{"discard_log frmRTGraph /w/rt.log"} << "";
        QTest::newRow("single-rate summary file goes only once the occlusion test runs")
            << "rt_sum_running rt_sum_on" << QStringList{} << "";
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
