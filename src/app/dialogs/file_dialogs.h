#pragma once
// The common file dialog: title, filter, default extension, initial folder,
// file name and flags, shown as Open or as Save. The filter is written as
// "description|pattern|description|pattern...". flags add up: 2 prompt before
// overwriting, 4 hide the read-only box, 8 keep the working folder, 2048 the
// path must exist, 4096 the file must exist.

#include <stdexcept>
#include <string>
#include <vector>

#include <QStringList>

#include "common/dialog_flags.h"

namespace kyt {

struct CommonDialog {
    std::string title;
    std::string filter;
    std::string default_ext;
    std::string initial_dir;
    std::string file_name;
    int flags = 0;
};

// The program's one common dialog (the main window's CommonDialog1).
CommonDialog& common_dialog();

class FileDialogError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    // Each returns the chosen name, or an empty text when the operator gave
    // up. Names, the initial folder among them, are in the file system's
    // bytes (see qs_file).
    virtual std::string show_open(const CommonDialog& d) = 0;
    virtual std::string show_save(const CommonDialog& d) = 0;
};

class QtFileDialogs final : public FileDialogs {
public:
    std::string show_open(const CommonDialog& d) override;
    std::string show_save(const CommonDialog& d) override;
};

// "desc|pattern|..." as Qt name filters: "Log Files (*.log)". "*.*" stands
// for every file, as it does for the operator.
QStringList qt_name_filters(const std::string& filter);

}  // namespace kyt
