#pragma once
// What a form shows in a message box: its text, title and style. The core
// returns these as values and never shows anything itself.

#include <string>

namespace kyt {

inline constexpr int box_critical = 16;     // stop sign, the "ERROR" boxes
inline constexpr int box_exclamation = 48;  // warnings, "CANCEL" and "SUCCESS" boxes

struct BoxMessage {
    std::string text;
    std::string title;
    int style = box_exclamation;

    bool operator==(const BoxMessage&) const = default;
};

}  // namespace kyt
