#include "app/dialogs/global_save_open.h"

#include <fstream>

#include "app/dialogs/file_dialogs.h"
#include "app/settings/read_ini.h"
#include "common/message_boxes.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "common/text.h"

namespace kyt {

namespace {

void set_filter(CommonDialog& d, bool log_first) {
    d.Filter = log_first ? kLogFirstFilter : kSummaryFirstFilter;
    d.DefaultExt = log_first ? "LOG" : "SUM";
}

// The save folder becomes the name's folder, and the key follows it.
void remember(const std::string& name) {
    SharedState& s = shared();
    SettingsStore& store = *services().settings;
    s.dirs.save_dir = remember_save_dir(store, s.dirs.save_dir, name);
    store.save_setting(kApp, kStartup, "savedir", s.dirs.save_dir);
}

}  // namespace

void show_open_dialog() {
    SharedState& s = shared();
    CommonDialog& d = common_dialog();
    d.InitDir = s.dirs.save_dir;
    // A report text that matches "*LOG*" offers logs first.
    set_filter(d, contains(s.report_text, "LOG"));
    d.FileName.clear();
    d.Flags = 6156;
    try {
        d.FileName = services().dialogs->show_open(d);
    } catch (const FileDialogError&) {
        d.FileName.clear();
        msg_box("Bad file name entered", vbExclamation, "BAD FILE NAME");
    }
    s.dirs.file_name = d.FileName;
    if (!s.dirs.file_name.empty()) remember(s.dirs.file_name);
}

std::string show_save_dialog() {
    SharedState& s = shared();
    CommonDialog& d = common_dialog();
    d.InitDir = s.dirs.save_dir;
    set_filter(d, s.run.log_file_wanted);
    d.FileName.clear();
    d.Flags = 2062;
    std::string name;
    try {
        name = services().dialogs->show_save(d);
    } catch (const FileDialogError&) {
        msg_box("Bad file name entered", vbExclamation, "BAD FILE NAME");
        return {};
    }
    d.FileName = name;
    if (!name.empty()) name = check_file_name(name);
    if (name.empty()) {
        msg_box("Saving file cancelled", vbExclamation, "CANCEL SAVE");
        return {};
    }
    remember(name);
    return name;
}

std::string check_file_name(const std::string& name) {
    std::ofstream f(name, std::ios::out | std::ios::trunc | std::ios::binary);
    if (!f) {
        msg_box("Bad file name", vbExclamation, "INVALID FILE NAME");
        return {};
    }
    f.close();
    SettingsStore& store = *services().settings;
    const std::string folder = remember_save_dir(store, shared().dirs.save_dir, name);
    store.save_setting(kApp, "startup", "savedir", folder);
    return name;
}

}  // namespace kyt
