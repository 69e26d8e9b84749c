#pragma once
// The flags of the common file dialog, which add up: 2 prompt before
// overwriting, 4 hide the read-only box, 8 keep the working folder, 2048 the
// path must exist, 4096 the file must exist.

namespace kyt {

enum FileDialogFlag : int {
    dlg_overwrite_prompt = 2,
    dlg_hide_read_only = 4,
    dlg_keep_folder = 8,
    dlg_path_must_exist = 2048,
    dlg_file_must_exist = 4096,
    // Every Open dialog: the file must be there (6156).
    dlg_open_flags = dlg_hide_read_only | dlg_keep_folder | dlg_path_must_exist | dlg_file_must_exist,
    // Every Save dialog: asks before overwriting (2062).
    dlg_save_flags = dlg_overwrite_prompt | dlg_hide_read_only | dlg_keep_folder | dlg_path_must_exist,
};

}  // namespace kyt
