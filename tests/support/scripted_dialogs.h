#pragma once

#include <deque>
#include <utility>
#include <vector>

#include "app/dialogs/file_dialogs.h"

namespace kyt {

// File dialogs answering with the names queued ("" or none: given up); fail_next: the next throws.
class ScriptedFileDialogs final : public FileDialogs {
public:
    std::string show_open(const CommonDialog& d) override { return answer(d, false); }
    std::string show_save(const CommonDialog& d) override { return answer(d, true); }
    void queue(std::string name) { names_.push_back(std::move(name)); }

    struct Request {
        CommonDialog dialog;
        bool save;
    };
    std::vector<Request> requests;
    bool fail_next = false;

private:
    std::string answer(const CommonDialog& d, bool save) {
        requests.push_back({d, save});
        if (std::exchange(fail_next, false)) throw FileDialogError("The file dialog could not be shown.");
        if (names_.empty()) return {};
        std::string n = std::move(names_.front());
        names_.pop_front();
        return n;
    }
    std::deque<std::string> names_;
};

}  // namespace kyt
