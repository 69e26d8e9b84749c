#include "link/global_comm.h"

#include "app/frmMain.h"
#include "common/clock.h"
#include "common/forms.h"
#include "common/message_boxes.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "link/protocol.h"
#include "link/serial_line.h"

namespace kyt {

namespace {
SerialLine& line() { return *services().serial; }
}  // namespace

void scan_comm_ports() {
    auto& free = shared().port.comm_ports_free;
    free.fill(true);
    SerialLine& comm = line();
    for (int port = 1; port <= 4; ++port) {
        comm.set_port_number(port);
        try {
            comm.set_port_open(true);
        } catch (const SerialError&) {
            const int n = comm.port_number();
            if (n >= 1 && n <= 4) free[n - 1] = false;
        }
        try {
            comm.set_port_open(false);
        } catch (const SerialError&) {
        }
    }
    if (!any_comm_port_free()) {
        msg_box("Sorry no comm ports available\r\rIf you wish to use a comm port with KYT, please close any other\r"
                "programs that are using comm ports and restart KYT.",
                box_critical, "ERROR");
        if (frmMain* m = forms::loaded<frmMain>()) m->disable_port_menus();
    }
}

bool any_comm_port_free() {
    for (bool f : shared().port.comm_ports_free)
        if (f) return true;
    return false;
}

void open_comm_port() {
    SerialLine& comm = line();
    if (comm.port_open()) comm.set_port_open(false);
    comm.set_port_number(shared().port.comm_port);
    comm.set_settings(kLineSettings);
    comm.clear_input();
    comm.clear_output();
    comm.set_rts_enable(true);
    try {
        comm.set_port_open(true);
    } catch (const SerialError&) {
        // The test-port entry is enabled only when the scan found a port: with
        // none free the failure was told already and passes in silence.
        const frmMain* m = forms::loaded<frmMain>();
        if (!m || m->test_port_enabled()) show_comm_port_error();
    }
}

void close_comm_port() {
    try {
        line().set_port_open(false);
    } catch (const SerialError&) {
    }
}

void reset_comm_buffers() {
    SerialLine& comm = line();
    comm.clear_output();
    comm.clear_input();
    comm.set_rthreshold(1);
    comm.set_input_len(0);
}

std::string flush_comm_input() {
    SerialLine& comm = line();
    std::string text;
    while (comm.in_buffer_count() > 0) text = comm.input();
    return text;
}

void wait_seconds(float seconds) { kyt::wait_seconds(*services().clock, seconds); }

void show_comm_port_error() {
    msg_box("Current selected Comm port is not functioning properly.\r\r"
            "You may goto configuration to change comm ports settings.",
            box_critical, "ERROR");
}

void update_comm_caption() {
    if (frmMain* m = forms::loaded<frmMain>()) m->show_comm_port(shared().port.comm_port);
}

void stop_current_test() {
    wait_seconds(1);
    try {
        reset_comm_buffers();
        line().output(command_stop(shared().port.channel));
        line().input();
    } catch (const SerialError& e) {
        tell_serial_error(e);
    }
    wait_seconds(1);
}

void show_reply_error() {
    const ReplyError e = classify_error_reply(shared().port.comm_buffer);
    if (e != ReplyError::none) msg_box(reply_error_text(e), box_critical, "ERROR");
}

void tell_serial_error(const SerialError& e) {
    if (e.told()) return;
    msg_box(std::string("The serial line failed: ") + e.what(), box_critical, "ERROR");
}

}  // namespace kyt
