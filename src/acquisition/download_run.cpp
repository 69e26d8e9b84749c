// The start of a run from the download dialog: the branches that capture a
// text from the analyser (a summary, a data log, anything it sends), and the
// branch that starts the live tests with their files and log heads.

#include "acquisition/frmDownload.h"

#include <QPointer>

#include <cstdio>

#include "acquisition/frmHeader.h"
#include "acquisition/logformat.h"
#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "app/frmMain.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/qt_text.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/global_comm.h"
#include "link/protocol.h"
#include "link/serial_line.h"
#include "reports/capture.h"
#include "reports/frmReports.h"

using namespace kyt;

namespace {

// The Save dialog with its title; the name, empty when the operator gave up.
std::string ask_save_name(const char* title) {
    common_dialog().title = title;
    return show_save_dialog();
}

// The two live tests: the title of the Save dialog for the log, and what the
// head writer tells.
struct LiveTestFiles {
    const char* log_title;
    std::string Folders::*log_file;
    const BoxMessage* cancelled;
    const BoxMessage* write_error;
};
const LiveTestFiles single_rate_files{"SAVE REAL TIME DATA", &Folders::rt_log_file, &rt_log_cancelled,
                                      &rt_log_bad_name};
const LiveTestFiles occlusion_files{"SAVE REAL TIME OCCLUSION DATA", &Folders::ot_log_file, &ot_log_cancelled,
                                    &ot_log_write_error};

}  // namespace

void frmDownload::evaluate_download_options() {
    SharedState& s = shared();
    RunState& run = s.run;
    s.dirs.ot_log_file.clear();
    s.dirs.rt_log_file.clear();
    run.rt_pending = run.ot_pending = run.report_pending = false;
    run.rt_selected = run.ot_selected = false;
    run.rt_log_on = run.ot_log_on = run.rt_sum_on = run.ot_sum_on = false;
    run.download_ok = false;
    run.header_is_single_rate = false;
    run.file_appended = false;
    run.log_file_wanted = false;
    try {
        reset_comm_buffers();
    } catch (const SerialError& e) {
        tell_serial_error(e);
        return;
    }
    const char mode = run.download_mode;
    if (mode == '1' || mode == '2' || mode == '4') start_capture(mode);
    if (mode == '3') start_realtime();
}

void frmDownload::start_capture(char mode) {
    SharedState& s = shared();
    RunState& run = s.run;
    const bool save_file = ui_save_to_file();
    static const struct {
        char mode;
        const char* title;
        std::string Folders::*file;
    } branches[] = {
        {'4', "RECEIVE ANY DATA", &Folders::receive_file},
        {'1', "GET SUMMARY DATA", &Folders::summary_file},
        {'2', "GET LOG DATA", &Folders::log_file},
    };
    const auto* branch = &branches[0];
    for (const auto& b : branches)
        if (b.mode == mode) branch = &b;
    if (mode == '2') run.log_file_wanted = true;

    frmReports* report = forms::get<frmReports>();
    bool chosen = false;
    if (save_file) {
        s.dirs.file_name = ask_save_name(branch->title);
        chosen = !s.dirs.file_name.empty();
        if (chosen) {
            s.dirs.*(branch->file) = s.dirs.file_name;
            report->setWindowTitle("REPORT - " + qs_file(s.dirs.file_name));
        }
        run.download_ok = chosen;
    } else {
        run.download_ok = true;
        s.dirs.file_name = tempfile_path(s.dirs.save_dir);
        report->setWindowTitle("REPORT");
    }
    if (!run.download_ok) return;

    // A summary or a log saved to a file carries the test header.
    if (mode != '4' && chosen && run.header_wanted) {
        if (mode == '1') run.summary_header_open = true;
        const QPointer<frmReports> alive(report);
        forms::get<frmHeader>()->exec();
        if (!alive) return;
    }
    report->prepare_capture(CaptureSetup{save_file, mode, s.report_rec});
    if (mode != '4') {
        try {
            services().serial->output(command_download(s.port.channel, mode));
        } catch (const SerialError& e) {
            tell_serial_error(e);
            run.download_ok = false;
            forms::unload<frmReports>();
            return;
        }
    }
    run.report_pending = true;
}

void frmDownload::start_realtime() {
    SharedState& s = shared();
    RunState& run = s.run;
    Folders& dirs = s.dirs;
    const DownloadChoice c = choice();
    run.header_is_single_rate = c.single_rate;
    run.log_file_wanted = true;
    run.header_entered = true;

    // The logs, single-rate first; a given-up dialog ends the branch.
    if (c.save_to_file) {
        run.download_ok = true;
        if (c.single_rate) {
            dirs.file_name = ask_save_name(single_rate_files.log_title);
            run.download_ok = !dirs.file_name.empty();
            if (run.download_ok) {
                dirs.rt_log_file = dirs.file_name;
                run.rt_log_on = run.rt_selected = true;
            }
        }
        if (run.download_ok && c.occlusion) {
            dirs.file_name = ask_save_name(occlusion_files.log_title);
            run.download_ok = !dirs.file_name.empty();
            if (run.download_ok) {
                dirs.ot_log_file = dirs.file_name;
                run.ot_log_on = run.ot_selected = true;
            }
        }
    } else {
        run.log_file_wanted = false;
        run.rt_selected = c.single_rate;
        run.ot_selected = c.occlusion;
        run.download_ok = true;
    }
    if (!run.download_ok) return;

    // The summaries the analyser delivers at the end of each test.
    run.log_file_wanted = false;
    if (c.report_output && c.summary_to_file) {
        const struct {
            bool selected;
            const char* title;
            std::string Folders::*file;
            bool RunState::*on;
        } summaries[] = {
            {run.rt_selected, "SAVE REAL TIME DATA SUMMARY", &Folders::rt_sum_file, &RunState::rt_sum_on},
            {run.ot_selected, "SAVE REAL TIME OCCLUSION DATA SUMMARY", &Folders::ot_sum_file, &RunState::ot_sum_on},
        };
        if (run.rt_selected) test_select = 1;
        for (const auto& summary : summaries) {
            if (!run.download_ok || !summary.selected) continue;
            run.download_ok = false;
            dirs.file_name = ask_save_name(summary.title);
            if (dirs.file_name.empty()) continue;
            dirs.*summary.file = dirs.file_name;
            run.*summary.on = true;
            run.download_ok = true;
        }
    }
    if (!run.download_ok) return;

    if (c.save_to_file && run.header_wanted) {
        frmHeader* header = forms::get<frmHeader>();
        if (run.rt_selected) header->show_mandatory_legend();
        const QPointer<frmDownload> alive(this);
        header->exec();
        if (!alive) return;
    }

    if (run.rt_selected) run.rt_running = true;
    else if (run.ot_selected) run.ot_running = true;

    // The first test's log is opened now; the occlusion log of a run that
    // begins with the single-rate test is opened when its test starts.
    if (run.rt_selected && run.rt_log_on) {
        write_RTfile_header();
        test_select = 1;
    } else if (run.ot_selected && run.ot_log_on) {
        write_OTfile_header();
        test_select = 4;
    }
    if (!run.download_ok) {
        abandon_realtime();
        return;
    }

    if (!c.start_automatically) msg_box("Please start Marovant and then press 'OK'", box_exclamation, "START TEST");

    if (run.rt_selected) {
        run.rt_pending = true;
        test_select = 1;
    } else if (run.ot_selected) {
        run.ot_pending = true;
    }
    try {
        services().serial->output(c.start_automatically ? command_start_test(s.port.channel, test_select)
                                                        : command_attach_test(s.port.channel, test_select));
    } catch (const SerialError& e) {
        tell_serial_error(e);
        abandon_realtime();
    }
}

// A run that could not start: its logs are closed and their heads deleted,
// and nothing is left pending or running.
void frmDownload::abandon_realtime() {
    SharedState& s = shared();
    RunState& run = s.run;
    RunLogs& logs = run_logs();
    const struct {
        LogFile& file;
        bool on;
        const std::string& name;
    } logs_of_run[] = {{logs.rt_file, run.rt_log_on, s.dirs.rt_log_file},
                       {logs.ot_file, run.ot_log_on, s.dirs.ot_log_file}};
    for (const auto& log : logs_of_run) {
        if (!log.file.is_open()) continue;
        log.file.close();
        if (log.on && !log.name.empty()) std::remove(log.name.c_str());
    }
    run.download_ok = false;
    run.rt_pending = run.ot_pending = false;
    run.rt_running = run.ot_running = false;
}

void frmDownload::write_RTfile_header() { write_file_header(true); }
void frmDownload::write_OTfile_header() { write_file_header(false); }

void frmDownload::write_file_header(bool single_rate) {
    if (!ui_save_to_file()) return;
    SharedState& s = shared();
    const LiveTestFiles& files = single_rate ? single_rate_files : occlusion_files;
    std::string& name = s.dirs.*files.log_file;
    if (name.empty()) {
        tell(*files.cancelled);
        return;
    }
    RunLogs& logs = run_logs();
    DataLog& log = single_rate ? static_cast<DataLog&>(logs.rt) : logs.ot;
    LogFile& file = single_rate ? logs.rt_file : logs.ot_file;
    // The head is dated when it is written, not by the analyser.
    while (!start_log(log, file, name, s.report_rec, s.port.channel, local_now())) {
        tell(*files.write_error);
        name = ask_save_name(files.log_title);
        if (name.empty()) {
            s.run.download_ok = false;
            if (!single_rate) logs.ot_log_open = false;
            return;
        }
    }
    if (!single_rate) logs.ot_log_open = true;
    remember_save_folder(name);
}
