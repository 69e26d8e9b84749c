#pragma once
// Message boxes. A box has a text, a style and a title, and gives back the
// button pressed. Styles add up as the console writes them: buttons (0 OK,
// 1 OK/Cancel, 3 Yes/No/Cancel, 4 Yes/No, 5 Retry/Cancel), icon (16 critical,
// 32 question, 48 exclamation, 64 information) and default button (0 first,
// 256 second, 512 third). In use: 16, 48, 292 and 276.

#include <string>
#include <vector>

#include "common/box_message.h"

namespace kyt {

// The button pressed.
enum BoxAnswer : int {
    answer_ok = 1,
    answer_cancel = 2,
    answer_abort = 3,
    answer_retry = 4,
    answer_ignore = 5,
    answer_yes = 6,
    answer_no = 7,
};

class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    virtual int show(const std::string& text, int style, const std::string& title) = 0;
};

// The real boxes, modal over the active window.
class QtMessageBoxes final : public MessageBoxes {
public:
    int show(const std::string& text, int style, const std::string& title) override;
};

// The buttons a style offers, in order, and the one pressed by default.
std::vector<int> box_buttons(int style);
int box_default_answer(int style);

// Shows a box through the program's message boxes.
int msg_box(const std::string& text, int style, const std::string& title);
inline int tell(const BoxMessage& m) { return msg_box(m.text, m.style, m.title); }

}  // namespace kyt
