#pragma once
// The phases of a run with the analyser, as transitions: each takes the run's
// flags, changes them, and returns what the forms must do, in order (close
// this log, stop that timer, send this command, show or unload that form).
// The forms only carry the actions out, so the whole machine is tested
// without a window.
//
// beginnextproc is the only step from one phase to the next: the end of a
// single-rate test leads to its summary, then to the occlusion test, then to
// its summary, each as the run asked for them. startottest begins the
// occlusion test; stopalltests ends everything and throws unfinished logs
// away.

#include <string>
#include <vector>

#include "common/shared_state.h"

namespace kyt {

// The forms a run uses: the two test screens, the summary notice and the
// main window.
enum class RunForm { rt_graph, ot_graph, summary, main };

// The timers of a test screen.
enum class RunTimer { get_data, get_sum, duration };

struct RunAction {
    enum Kind {
        close_data_file,      // the test screen writes the end of its log and closes it
        discard_log,          // the test screen closes its log as it is; the file `text` is deleted
        delete_file,          // the file `text` is deleted when it exists
        stop_timer,           // `timer` of `form`
        start_timer,          // `timer` of `form`
        stop_current_test,    // the analyser is told to stop the channel's test
        reset_comm_buffers,
        send,                 // the command `text` goes to the analyser
        set_caption,          // `form` takes the caption `text`
        show_form,            // `form` is shown without blocking
        unload_form,          // `form` is unloaded, when it is loaded
        busy,                 // `form`: hourglass pointer, its Cancel and Stop disabled
        restore_pointer,      // `form`: normal pointer again, when it is loaded
        create_summary_file,  // `form` asks the analyser for its test's summary
        write_ot_head,        // the occlusion log's head is written
    };
    Kind kind;
    RunForm form = RunForm::main;
    RunTimer timer = RunTimer::get_data;
    std::string text;

    bool operator==(const RunAction&) const = default;
};

// What the transitions read of the download dialog's choice.
struct RunChoice {
    char channel = 'A';
    bool save_to_file = false;        // "Save to File" ticked
    bool summary_to_printer = false;  // the summary is printed by the analyser ("PR")
};

using RunActions = std::vector<RunAction>;

// The next phase, decided by the first of rt_running, rt_sum_running,
// ot_running and ot_sum_running that is set.
RunActions beginnextproc(RunState& run, const Folders& files, const RunChoice& choice);

// Begins the occlusion test: head of its log, the single-rate screen gone,
// the occlusion screen polling, the test started on the analyser.
RunActions startottest(RunState& run, const RunChoice& choice);

// Ends the run, whatever phase it is in. Logs still being written are closed
// and deleted; ot_sum_running is left as it is.
RunActions stopalltests(RunState& run, const Folders& files);

// An action as one line of text, as tests and traces read it.
std::string describe(const RunAction& action);

}  // namespace kyt
