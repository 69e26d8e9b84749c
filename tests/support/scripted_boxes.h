#pragma once

#include <QTest>

#include <deque>
#include <vector>

#include "common/message_boxes.h"

namespace kyt {

// Boxes answered as scripted (answer, expect) and recorded; an unscripted one fails the test.
class ScriptedMessageBoxes final : public MessageBoxes {
public:
    struct Box {
        std::string text;
        int style;
        std::string title;
    };
    int show(const std::string& text, int style, const std::string& title) override {
        shown.push_back({text, style, title});
        if (answers_.empty() && strict_)
            QTest::qFail(("A message box the test did not expect: \"" + title + "\": \"" + text + "\"").c_str(),
                         __FILE__, __LINE__);
        if (answers_.empty()) return box_default_answer(style);
        const int a = answers_.front();
        answers_.pop_front();
        return a == default_answer ? box_default_answer(style) : a;
    }
    void answer(int a) { answers_.push_back(a); }
    void expect(std::size_t n = 1) { answers_.insert(answers_.end(), n, default_answer); }
    void allow_any() { strict_ = false; }

    std::vector<Box> shown;

private:
    static constexpr int default_answer = 0;
    std::deque<int> answers_;
    bool strict_ = true;
};

}  // namespace kyt
