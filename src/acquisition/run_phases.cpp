#include "acquisition/run_phases.h"

#include "link/protocol.h"

namespace kyt {

namespace {

using K = RunAction::Kind;

RunAction on(K kind, RunForm form) { return {kind, form, RunTimer::get_data, {}}; }
RunAction timer(K kind, RunForm form, RunTimer t) { return {kind, form, t, {}}; }
RunAction with_text(K kind, std::string text, RunForm form = RunForm::main) {
    return {kind, form, RunTimer::get_data, std::move(text)};
}
RunAction plain(K kind) { return {kind, RunForm::main, RunTimer::get_data, {}}; }

void append(RunActions& to, const RunActions& more) { to.insert(to.end(), more.begin(), more.end()); }

// The summary of the test on `form`: shown as a notice while the analyser's
// text comes in through the form's summary timer.
void begin_summary(RunActions& a, RunState& run, RunForm form, const char* caption) {
    a.push_back(with_text(K::set_caption, caption, RunForm::summary));
    a.push_back(on(K::show_form, RunForm::summary));
    run.first_buffer = true;
    a.push_back(on(K::busy, form));
    a.push_back(on(K::create_summary_file, form));
    a.push_back(timer(K::start_timer, form, RunTimer::get_sum));
}

void end_summary(RunActions& a, RunForm form) {
    a.push_back(on(K::unload_form, RunForm::summary));
    a.push_back(timer(K::stop_timer, form, RunTimer::get_sum));
    a.push_back(on(K::restore_pointer, form));
}

void start_occlusion_next(RunActions& a, RunState& run, const RunChoice& choice) {
    run.ot_running = true;
    append(a, startottest(run, choice));
}

}  // namespace

RunActions beginnextproc(RunState& run, const Folders& files, const RunChoice& choice) {
    RunActions a;
    if (run.rt_running) {
        run.rt_running = false;
        if (!files.rt_log_file.empty() && run.rt_log_on) a.push_back(on(K::close_data_file, RunForm::rt_graph));
        run.rt_pending = false;
        run.rt_selected = false;
        a.push_back(timer(K::stop_timer, RunForm::rt_graph, RunTimer::get_data));
        a.push_back(timer(K::stop_timer, RunForm::rt_graph, RunTimer::duration));
        a.push_back(plain(K::stop_current_test));
        if (choice.summary_to_printer) a.push_back(with_text(K::send, command_print_summary(choice.channel)));
        if (run.rt_sum_on) {
            run.rt_sum_running = true;
            if (!files.rt_sum_file.empty()) begin_summary(a, run, RunForm::rt_graph, "Single-Rate");
        } else if (run.ot_selected) {
            start_occlusion_next(a, run, choice);
        } else {
            a.push_back(on(K::unload_form, RunForm::rt_graph));
        }
    } else if (run.rt_sum_running) {
        run.rt_sum_running = false;
        end_summary(a, RunForm::rt_graph);
        a.push_back(on(K::unload_form, RunForm::rt_graph));
        if (run.ot_selected) start_occlusion_next(a, run, choice);
    } else if (run.ot_running) {
        run.ot_running = false;
        if (choice.save_to_file && !files.ot_log_file.empty()) a.push_back(on(K::close_data_file, RunForm::ot_graph));
        a.push_back(plain(K::stop_current_test));
        if (choice.summary_to_printer) a.push_back(with_text(K::send, command_print_summary(choice.channel)));
        a.push_back(timer(K::stop_timer, RunForm::ot_graph, RunTimer::get_data));
        a.push_back(timer(K::stop_timer, RunForm::ot_graph, RunTimer::duration));
        run.ot_selected = false;
        if (run.ot_sum_on) {
            run.ot_sum_running = true;
            if (!files.ot_sum_file.empty()) begin_summary(a, run, RunForm::ot_graph, "Occlusion");
        } else {
            run.ot_pending = false;
            a.push_back(on(K::unload_form, RunForm::ot_graph));
        }
    } else if (run.ot_sum_running) {
        run.ot_sum_running = false;
        end_summary(a, RunForm::ot_graph);
        run.ot_pending = false;
        a.push_back(on(K::unload_form, RunForm::ot_graph));
    }
    a.push_back(on(K::restore_pointer, RunForm::rt_graph));
    return a;
}

RunActions startottest(RunState& run, const RunChoice& choice) {
    RunActions a;
    if (choice.save_to_file) a.push_back(plain(K::write_ot_head));
    a.push_back(on(K::unload_form, RunForm::rt_graph));
    a.push_back(plain(K::reset_comm_buffers));
    a.push_back(timer(K::start_timer, RunForm::ot_graph, RunTimer::get_data));
    run.ot_pending = true;
    a.push_back(on(K::show_form, RunForm::ot_graph));
    a.push_back(with_text(K::send, command_start_test(choice.channel, test_occlusion)));
    return a;
}

RunActions stopalltests(RunState& run, const Folders& files) {
    RunActions a;
    for (RunForm form : {RunForm::rt_graph, RunForm::ot_graph})
        for (RunTimer t : {RunTimer::get_data, RunTimer::get_sum, RunTimer::duration})
            a.push_back(timer(K::stop_timer, form, t));
    run.rt_pending = false;
    run.ot_pending = false;
    a.push_back(plain(K::stop_current_test));
    if (run.rt_log_on) a.push_back(with_text(K::discard_log, files.rt_log_file, RunForm::rt_graph));
    // Both tests look at the occlusion phase, the first one too: a summary
    // file of the single-rate test goes only once the occlusion test runs.
    if (run.ot_running && run.rt_sum_on) a.push_back(with_text(K::delete_file, files.rt_sum_file));
    if (run.ot_running && run.ot_log_on) a.push_back(with_text(K::discard_log, files.ot_log_file, RunForm::ot_graph));
    run.rt_running = run.rt_sum_running = run.ot_running = false;
    run.rt_selected = run.ot_selected = false;
    run.rt_log_on = run.ot_log_on = run.rt_sum_on = run.ot_sum_on = false;
    a.push_back(on(K::show_form, RunForm::main));
    return a;
}

std::string describe(const RunAction& action) {
    static const char* const kinds[] = {"close_data_file", "discard_log", "delete_file", "stop_timer",
                                        "start_timer", "stop_current_test", "reset_comm_buffers", "send",
                                        "set_caption", "show_form", "unload_form", "busy",
                                        "restore_pointer", "create_summary_file", "write_ot_head"};
    static const char* const forms[] = {"frmRTGraph", "frmOTGraph", "frmSummary", "frmMain"};
    static const char* const timers[] = {"GetDataTimer", "GetSumTimer", "DurationTimer"};
    std::string s = kinds[action.kind];
    switch (action.kind) {
        case K::stop_current_test:
        case K::reset_comm_buffers:
        case K::write_ot_head:
            break;
        case K::send:
        case K::delete_file:
            s += " " + action.text;
            break;
        case K::stop_timer:
        case K::start_timer:
            s += std::string(" ") + forms[static_cast<int>(action.form)] + "." + timers[static_cast<int>(action.timer)];
            break;
        case K::set_caption:
        case K::discard_log:
            s += std::string(" ") + forms[static_cast<int>(action.form)] + " " + action.text;
            break;
        default:
            s += std::string(" ") + forms[static_cast<int>(action.form)];
    }
    return s;
}

}  // namespace kyt
