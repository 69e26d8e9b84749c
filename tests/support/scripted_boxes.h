#pragma once
// Message boxes that a test answers. Every box is recorded. A box is
// expected only when the test said so beforehand, with the answer to give
// (answer) or the box's default button (expect); any other box fails the
// test that was running, so that a message nobody looked for cannot pass
// unseen. A test that does not care how many boxes come may say so
// (allow_any), and then boxes without a scripted answer get their default.

#include <QTest>

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "common/message_boxes.h"

namespace kyt {

class ScriptedMessageBoxes final : public MessageBoxes {
public:
    struct Box {
        std::string text;
        int style;
        std::string title;
    };
    int show(const std::string& text, int style, const std::string& title) override {
        shown.push_back({text, style, title});
        if (answers_.empty()) {
            if (strict_)
                QTest::qFail(("A message box the test did not expect: \"" + title + "\": \"" + text + "\"").c_str(),
                             __FILE__, __LINE__);
            return box_default_answer(style);
        }
        const int a = answers_.front();
        answers_.pop_front();
        return a == default_answer ? box_default_answer(style) : a;
    }

    // The next box is expected; it is answered with a.
    void answer(int a) { answers_.push_back(a); }
    // The next n boxes are expected; each is answered with its default button.
    void expect(std::size_t n = 1) { answers_.insert(answers_.end(), n, default_answer); }
    // Boxes beyond those scripted are answered with their default, not failed.
    void allow_any() { strict_ = false; }
    // How many scripted boxes have not come.
    std::size_t pending() const { return answers_.size(); }

    std::vector<Box> shown;

private:
    static constexpr int default_answer = 0;
    std::deque<int> answers_;
    bool strict_ = true;
};

}  // namespace kyt
