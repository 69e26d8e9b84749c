#include "app/settings/read_ini.h"

#include "common/numbers.h"

namespace kyt {

void read_ini(SettingsStore& store, const std::string& start_folder, SharedState& state) {
    Folders& d = state.dirs;
    d.default_main_dir = start_folder;
    d.default_help_dir = start_folder + kSep + "help";
    d.default_save_dir = start_folder + kSep + "save";
    d.default_init_dir = start_folder + kSep + "save";

    state.run.header_wanted = true;
    state.run.header_entered = true;

    // A value that is not a number, or does not fit, reads as port 0, which
    // cannot open and is reported by the open.
    const auto port = to_int16(leading_number(store.get_setting(kApp, kStartup, "comm", "2")));
    state.port.comm_port = port.value_or(0);

    const std::string series = store.get_setting(kApp, kStartup, "series", "C");
    state.port.series = series.empty() ? ' ' : series.front();

    d.main_dir = store.get_setting(kApp, kStartup, "maindir", d.default_main_dir);
    d.save_dir = store.get_setting(kApp, kStartup, "savedir", d.default_save_dir);
    d.init_dir = store.get_setting(kApp, kStartup, "initdir", d.default_init_dir);
    d.help_dir = store.get_setting(kApp, kStartup, "helpdir", d.default_help_dir);

    store.save_setting(kApp, kStartup, "maindir", d.main_dir);
    store.save_setting(kApp, kStartup, "helpdir", d.help_dir);
    store.save_setting(kApp, kStartup, "savedir", d.save_dir);
    store.save_setting(kApp, kStartup, "initdir", d.init_dir);
}

std::string remember_save_dir(SettingsStore& store, const std::string& current_save_dir, const std::string& path) {
    const std::size_t n = path.size();
    std::size_t i = 1;
    while (i <= n && path.substr(n - i).find(kSep) == std::string::npos) ++i;
    if (path.empty()) return {};
    store.save_setting(kApp, "startup", "savedir", current_save_dir);
    return i > n ? std::string() : path.substr(0, n - i);
}

}  // namespace kyt
