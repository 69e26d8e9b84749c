// The start of a run from the download dialog: the branches that capture a
// text from the analyser (a summary, a data log, anything it sends).

#include "acquisition/frmDownload.h"

#include <QPointer>

#include "acquisition/frmHeader.h"
#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "app/frmMain.h"
#include "common/forms.h"
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
            report->setWindowTitle("REPORT - " + qs(s.dirs.file_name));
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
