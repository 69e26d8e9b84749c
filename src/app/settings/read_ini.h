#pragma once
// Start-up settings: the working folders, the port number and the analyser
// series, read once from the store, and the save folder that the file
// dialogs remember.

#include <string>

#include "app/settings/settings_store.h"
#include "common/shared_state.h"

namespace kyt {

// The folder separator of this platform, which stands wherever the console's
// folders join a name.
inline constexpr char kSep = '/';

// Reads the start-up keys into the shared state. start_folder is the process's
// current folder at start (not the executable's folder): the four folder
// defaults are taken from it, and the folder keys are written back so that
// after the first start all four exist.
void read_ini(SettingsStore& store, const std::string& start_folder, SharedState& state);

// The folder part of a file path, without its closing separator ("" when the
// path holds none). For a non-empty path the key "savedir" is written with
// current_save_dir, the value the save folder holds before the caller stores
// the result: the key lags one step until the caller writes it again.
std::string remember_save_dir(SettingsStore& store, const std::string& current_save_dir, const std::string& path);

}  // namespace kyt
