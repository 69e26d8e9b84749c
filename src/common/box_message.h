#pragma once
// What a form shows in a message box: its text, title and style. The core
// returns these as values and never shows anything itself.

#include <string>

namespace kyt {

// Box styles add up: the buttons, the icon and the default button.
inline constexpr int box_ok_only = 0;
inline constexpr int box_ok_cancel = 1;
inline constexpr int box_yes_no_cancel = 3;
inline constexpr int box_yes_no = 4;
inline constexpr int box_retry_cancel = 5;
inline constexpr int box_critical = 16;     // stop sign, the "ERROR" boxes
inline constexpr int box_question = 32;
inline constexpr int box_exclamation = 48;  // warnings, "CANCEL" and "SUCCESS" boxes
inline constexpr int box_information = 64;
inline constexpr int box_default_second = 256;
inline constexpr int box_default_third = 512;
// The two questions the console asks: Yes and No with No as the default, under
// a question mark (292) or, where the answer may lose work, a stop sign (276).
inline constexpr int box_ask = box_yes_no | box_question | box_default_second;
inline constexpr int box_ask_critical = box_yes_no | box_critical | box_default_second;

struct BoxMessage {
    std::string text;
    std::string title;
    int style = box_exclamation;

    bool operator==(const BoxMessage&) const = default;
};

}  // namespace kyt
