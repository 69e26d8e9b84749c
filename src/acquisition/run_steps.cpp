// The phases of a live test run, carried out: the phase machine decides what
// happens next and returns it as actions; here each action reaches the form,
// the log, the file or the serial line it is for.

#include <cstdio>

#include "acquisition/frmDownload.h"
#include "acquisition/live_test_form.h"
#include "acquisition/logformat.h"
#include "common/forms.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/serial_line.h"

using namespace kyt;

namespace {

const char* form_name(RunForm form) {
    switch (form) {
        case RunForm::rt_graph: return "frmRTGraph";
        case RunForm::ot_graph: return "frmOTGraph";
        case RunForm::summary: return "frmSummary";
        default: return "frmMain";
    }
}

// A test screen that is loaded, or loaded now when `load` is set.
LiveTestForm* test_form(RunForm form, bool load = false) {
    QWidget* w = load ? forms::get(form_name(form)) : forms::find(form_name(form));
    return dynamic_cast<LiveTestForm*>(w);
}

// The log of the test on `form`: its end mark and closing block, then shut.
void close_log(RunForm form) {
    RunLogs& logs = run_logs();
    const SharedState& s = shared();
    DataLog& log = form == RunForm::rt_graph ? static_cast<DataLog&>(logs.rt) : logs.ot;
    LogFile& file = form == RunForm::rt_graph ? logs.rt_file : logs.ot_file;
    file.write(log.close(s.report_rec, s.run.header_entered));
    file.close();
}

}  // namespace

void frmDownload::beginnextproc() {
    SharedState& s = shared();
    carry_out(kyt::beginnextproc(s.run, s.dirs, RunChoice{s.port.channel, ui_save_to_file(), choice().summary_to_printer}));
}

void frmDownload::startottest() {
    SharedState& s = shared();
    carry_out(kyt::startottest(s.run, RunChoice{s.port.channel, ui_save_to_file(), choice().summary_to_printer}));
}

void frmDownload::stopalltests() {
    SharedState& s = shared();
    carry_out(kyt::stopalltests(s.run, s.dirs));
}

void frmDownload::line_lost() {
    RunLogs& logs = run_logs();
    if (logs.rt_file.is_open()) close_log(RunForm::rt_graph);
    if (logs.ot_file.is_open()) close_log(RunForm::ot_graph);
    RunState& run = shared().run;
    run.rt_pending = run.ot_pending = false;
    run.rt_running = run.ot_running = run.rt_sum_running = run.ot_sum_running = false;
    run.rt_selected = run.ot_selected = false;
    run.rt_log_on = run.ot_log_on = run.rt_sum_on = run.ot_sum_on = false;
    for (RunForm form : {RunForm::summary, RunForm::rt_graph, RunForm::ot_graph}) forms::unload(form_name(form));
    if (QWidget* main_window = forms::find("frmMain")) main_window->show();
}

void frmDownload::carry_out(const RunActions& actions) {
    using K = RunAction::Kind;
    for (const RunAction& a : actions) {
        try {
            switch (a.kind) {
                case K::close_data_file:
                    close_log(a.form);
                    break;
                case K::discard_log: {
                    RunLogs& logs = run_logs();
                    (a.form == RunForm::rt_graph ? logs.rt_file : logs.ot_file).close();
                    std::remove(a.text.c_str());
                    break;
                }
                case K::delete_file:
                    std::remove(a.text.c_str());
                    break;
                case K::stop_timer:
                case K::start_timer:
                    if (LiveTestForm* f = test_form(a.form, a.kind == K::start_timer))
                        f->set_timer(a.timer, a.kind == K::start_timer);
                    break;
                case K::stop_current_test:
                    if (services().serial->port_open()) stop_current_test();
                    break;
                case K::reset_comm_buffers:
                    reset_comm_buffers();
                    break;
                case K::send:
                    services().serial->output(a.text);
                    break;
                case K::set_caption:
                    if (QWidget* f = forms::get(form_name(a.form))) f->setWindowTitle(qs(a.text));
                    break;
                case K::show_form:
                    if (QWidget* f = forms::get(form_name(a.form))) {
                        if (a.form != RunForm::main) center_form(f);
                        f->show();
                    }
                    break;
                case K::unload_form:
                    forms::unload(form_name(a.form));
                    break;
                case K::busy:
                case K::restore_pointer:
                    if (LiveTestForm* f = test_form(a.form)) f->set_busy(a.kind == K::busy);
                    break;
                case K::create_summary_file:
                    if (LiveTestForm* f = test_form(a.form)) f->create_summary_file();
                    break;
                case K::write_ot_head:
                    write_OTfile_header();
                    break;
            }
        } catch (const SerialError& e) {
            // The run goes on to its end; the line's failure is told once.
            tell_serial_error(e);
        }
    }
}
