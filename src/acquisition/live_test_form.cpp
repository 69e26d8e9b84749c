#include "acquisition/live_test_form.h"

#include <QCloseEvent>
#include <QPushButton>

#include "acquisition/frmDownload.h"
#include "acquisition/logformat.h"
#include "common/file_text.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/wait_cursor.h"
#include "link/global_comm.h"
#include "link/protocol.h"
#include "link/serial_line.h"

using namespace kyt;

namespace {

frmDownload* download_dialog() { return forms::loaded<frmDownload>(); }

}  // namespace

LiveTestForm::LiveTestForm() : QWidget(nullptr, Qt::Window) {
    setAttribute(Qt::WA_DeleteOnClose);
    for (auto [t, name, ms] : {std::tuple{&GetDataTimer, "GetDataTimer", 1000}, std::tuple{&GetSumTimer, "GetSumTimer", 100},
                               std::tuple{&DurationTimer, "DurationTimer", 1000}}) {
        t->setParent(this);
        t->setObjectName(name);
        t->setInterval(ms);
    }
    connect(&GetDataTimer, &QTimer::timeout, this, &LiveTestForm::GetDataTimer_Timer);
    connect(&GetSumTimer, &QTimer::timeout, this, &LiveTestForm::GetSumTimer_Timer);
    connect(&DurationTimer, &QTimer::timeout, this, &LiveTestForm::DurationTimer_Timer);
}

LiveTestForm::~LiveTestForm() = default;

void LiveTestForm::wire(QPushButton* stop, QPushButton* cancel) {
    stop_ = stop;
    cancel_ = cancel;
    connect(stop, &QPushButton::clicked, this, &LiveTestForm::cmdStop_Click);
    connect(cancel, &QPushButton::clicked, this, &LiveTestForm::cmdCancel_Click);
}

DownloadChoice LiveTestForm::run_choice() {
    const frmDownload* d = download_dialog();
    return d ? d->choice() : DownloadChoice{};
}

void LiveTestForm::reset_buffers() {
    try {
        reset_comm_buffers();
    } catch (const SerialError& e) {
        tell_serial_error(e);
    }
}

void LiveTestForm::next_phase_when_up(long seconds_left) {
    if (seconds_left >= 1) return;
    if (frmDownload* d = download_dialog()) d->beginnextproc();
}

void LiveTestForm::set_timer(RunTimer timer, bool on) {
    QTimer& t = timer == RunTimer::get_data ? GetDataTimer : timer == RunTimer::get_sum ? GetSumTimer : DurationTimer;
    if (on) t.start();
    else t.stop();
}

void LiveTestForm::set_busy(bool on) {
    if (on) {
        setCursor(Qt::WaitCursor);
        if (stop_) stop_->setEnabled(false);
        if (cancel_) cancel_->setEnabled(false);
    } else {
        unsetCursor();
    }
}

void LiveTestForm::GetDataTimer_Timer() {
    SharedState& s = shared();
    // The poll goes out and what has come in since the last tick is read at
    // once: each reading answers the poll before.
    // A port closed under a test has lost its device, which has been told.
    if (!services().serial->port_open()) {
        line_lost();
        return;
    }
    std::string raw;
    try {
        services().serial->output(command_poll(s.port.channel));
        raw = flush_comm_input();
    } catch (const SerialError& e) {
        tell_serial_error(e);
        line_lost();
        return;
    }
    const PollReply reply = take_poll_reply(raw);
    s.port.comm_buffer = reply.text;
    if (!reply.is_data) {
        process_errors(reply.error);
        return;
    }
    take_reply(reply.text);
}

void LiveTestForm::line_lost() {
    GetDataTimer.stop();
    GetSumTimer.stop();
    DurationTimer.stop();
    if (frmDownload* d = download_dialog()) d->line_lost();
}

void LiveTestForm::process_errors(ReplyError error) {
    const char* text = reply_error_text(error);
    if (!text || !*text) return;
    msg_box(text, reply_error_style, reply_error_title);
    if (error != ReplyError::not_connected) return;
    // No pump on the channel: the run ends and the main window comes back.
    if (frmDownload* d = download_dialog()) d->stopalltests();
    forms::unload(objectName());
}

void LiveTestForm::create_summary_file() {
    try {
        reset_comm_buffers();
        services().serial->output(command_download(shared().port.channel, '1'));
    } catch (const SerialError& e) {
        tell_serial_error(e);
    }
}

void LiveTestForm::GetSumTimer_Timer() {
    SharedState& s = shared();
    std::string block;
    try {
        block = services().serial->input();
    } catch (const SerialError& e) {
        tell_serial_error(e);
        line_lost();
        return;
    }
    s.port.comm_buffer = block;
    const SummaryGather::Tick t = gather_.take(block, s.run.first_buffer);
    s.report_text = gather_.text();
    if (t.reply_error) show_reply_error();
    if (!t.ended) return;
    s.run.report_pending = false;
    s.run.first_buffer = true;
    // A file that cannot be written keeps the summary phase: only the
    // notice's Cancel leads out.
    if (!write_summary()) return;
    if (frmDownload* d = download_dialog()) d->beginnextproc();
}

bool LiveTestForm::write_summary() {
    SharedState& s = shared();
    s.dirs.file_name = summary_file();
    const std::string text = summary_file_text(gather_.text(), s.report_rec, s.run.header_entered, s.run.download_mode);
    // Whole or not at all: a failure leaves no half summary under the name.
    if (replace_file_whole(summary_file(), text)) return true;
    tell(summary_write_error());
    return false;
}

void LiveTestForm::cmdStop_Click() {
    if (frmDownload* d = download_dialog()) d->beginnextproc();
}

void LiveTestForm::cmdCancel_Click() {
    {
        const WaitCursor busy;
        if (frmDownload* d = download_dialog()) d->stopalltests();
    }
    forms::unload(objectName());
}

void LiveTestForm::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (stop_ && stop_->isEnabled()) cmdStop_Click();
}
