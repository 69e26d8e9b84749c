#include "support/scripted_dialogs.h"

namespace kyt {

std::string ScriptedFileDialogs::answer(const CommonDialog& d, bool save) {
    requests.push_back({d, save});
    if (fail_next) {
        fail_next = false;
        throw FileDialogError("The file dialog could not be shown.");
    }
    if (names_.empty()) return {};
    std::string n = std::move(names_.front());
    names_.pop_front();
    return n;
}

}  // namespace kyt
