#include "app/dialogs/global_save_open.h"

#include "app/dialogs/file_dialogs.h"
#include "app/settings/read_ini.h"
#include "common/file_text.h"
#include "common/message_boxes.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/text.h"
#include "reports/csv_convert.h"

namespace kyt {

namespace {

void set_filter(CommonDialog& d, bool log_first) {
    d.filter = log_first ? kLogFirstFilter : kSummaryFirstFilter;
    d.default_ext = log_first ? "LOG" : "SUM";
}

}  // namespace

std::string open_and_remember(CommonDialog& d) {
    d.file_name.clear();
    d.flags = dlg_open_flags;
    try {
        d.file_name = services().dialogs->show_open(d);
    } catch (const FileDialogError&) {
        d.file_name.clear();
        msg_box("Bad file name entered", box_exclamation, "BAD FILE NAME");
    }
    if (!d.file_name.empty()) remember_save_folder(d.file_name);
    return d.file_name;
}

void remember_save_folder(const std::string& name) {
    SharedState& s = shared();
    SettingsStore& store = *services().settings;
    s.dirs.save_dir = remember_save_dir(store, s.dirs.save_dir, name);
    store.save_setting(kApp, kStartup, "savedir", s.dirs.save_dir);
}

void show_open_dialog() {
    SharedState& s = shared();
    CommonDialog& d = common_dialog();
    d.initial_dir = s.dirs.save_dir;
    // A report text that matches "*LOG*" offers logs first.
    set_filter(d, contains(s.report_text, "LOG"));
    s.dirs.file_name = open_and_remember(d);
}

std::string show_save_dialog() {
    SharedState& s = shared();
    CommonDialog& d = common_dialog();
    d.initial_dir = s.dirs.save_dir;
    set_filter(d, s.run.log_file_wanted);
    d.file_name.clear();
    d.flags = dlg_save_flags;
    std::string name;
    try {
        name = services().dialogs->show_save(d);
    } catch (const FileDialogError&) {
        msg_box("Bad file name entered", box_exclamation, "BAD FILE NAME");
        return {};
    }
    d.file_name = name;
    if (!name.empty()) name = check_file_name(name);
    if (name.empty()) {
        msg_box("Saving file cancelled", box_exclamation, "CANCEL SAVE");
        return {};
    }
    remember_save_folder(name);
    return name;
}

std::string show_csv_save_dialog() {
    CommonDialog& d = common_dialog();
    d.default_ext = csv_dialog_extension;
    d.filter = csv_dialog_filter;
    d.initial_dir = shared().dirs.save_dir;
    return open_and_remember(d);
}

std::string check_file_name(const std::string& name) {
    if (!write_text_file(name, {})) {
        msg_box("Bad file name", box_exclamation, "INVALID FILE NAME");
        return {};
    }
    SettingsStore& store = *services().settings;
    const std::string folder = remember_save_dir(store, shared().dirs.save_dir, name);
    store.save_setting(kApp, "startup", "savedir", folder);
    return name;
}

}  // namespace kyt
