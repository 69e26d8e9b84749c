#pragma once
// The program-wide variables, one instance each, grouped by what they serve.
// Forms read and write them; core procedures take what they need as arguments.

#include <array>
#include <cstdint>
#include <string>

#include "common/report_rec.h"

namespace kyt {

struct PortState {
    int comm_port = 2;                        // chosen port, 1 to 4
    std::array<bool, 4> comm_ports_free{};    // ports 1 to 4 that the last scan could open
    char channel = 'A';                       // analyser channel "A" to "D"
    char series = 'C';                        // analyser series letter
    std::string comm_buffer;                  // text of the last serial read
};

struct Folders {
    std::string main_dir, save_dir, init_dir, help_dir;
    std::string default_main_dir, default_save_dir, default_init_dir, default_help_dir;
    std::string file_name;
    std::string rt_log_file, ot_log_file, rt_sum_file, ot_sum_file;
    std::string summary_file, log_file, receive_file, edit_file;
};

struct RunState {
    char download_mode = ' ';  // "1" summary, "2" data log, "3" real-time, "4" receive any, "5" report edit
    bool download_ok = false;
    bool report_pending = false, rt_pending = false, ot_pending = false;
    bool rt_selected = false, ot_selected = false;
    bool rt_running = false, ot_running = false;
    bool rt_sum_running = false, ot_sum_running = false;
    bool rt_log_on = false, ot_log_on = false, rt_sum_on = false, ot_sum_on = false;
    bool header_wanted = false, header_entered = false, header_is_single_rate = false;
    bool first_buffer = true;
    bool capture_begun = false;
    bool changes_unsaved = false;  // only read at exit; nothing arms it yet
    bool file_appended = false;
    int file_action = 0;           // 1 overwrite, 0 append, 2 cancel: how a report in hand is stored
    bool file_confirmed = false;   // a report file was opened, so what is in hand may be stored
    bool log_file_wanted = false;  // chooses the filter order of the Save dialog
    bool summary_header_open = false;
};

// The trumpet analysis between its settings dialog, its view and its page.
struct TrumpetState {
    std::int16_t trumpet_start_time = 0;  // analysis start, minutes
    std::int16_t trumpet_end_time = 0;    // analysis end, minutes
    bool trumpet_settings_ok = false;     // the settings dialog was confirmed
    std::int16_t trumpet_scale = 1;       // vertical scale step, 1 to 4
    std::int16_t trumpet_default_marker = 0;
    double interpolation_interval = 60;   // seconds between resampled points, 30 or 60

    // What the settings dialog keeps from one opening to the next.
    std::int16_t calculation_length = 60;  // chosen length, minutes; the printed page reads it
    bool suppress_click = false;           // the next selection event of either list is the dialog's own
    std::int16_t saved_start = 0, saved_end = 0, saved_marker = 0;  // confirmed last, restored by Cancel
};

struct SharedState {
    PortState port;
    Folders dirs;
    RunState run;
    ReportRec report_rec;
    std::array<bool, 12> mandatory{};
    std::string report_text;
    std::string header_text;
    double report_set_rate = 0;  // the set rate the header dialog last accepted, as a number
    std::string password;
    bool password_required = false;
    std::string help_topic;
    double entered_rate = 0;   // the base rate last typed in the rate dialog
    bool rate_changed = false; // the rate dialog changed the base rate
    int help_page = 0;
    TrumpetState trumpet;
};

// The one instance.
SharedState& shared();

}  // namespace kyt
