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

struct BoxMessage {
    std::string text;
    std::string title;
    int style = box_exclamation;

    bool operator==(const BoxMessage&) const = default;
};

}  // namespace kyt
