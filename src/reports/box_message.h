#pragma once
// What a form shows in a message box: its text, title and style. The core
// returns these as values and never shows anything itself.

#include <string_view>

namespace kyt {

inline constexpr int box_critical = 16;     // stop sign, the "ERROR" boxes
inline constexpr int box_exclamation = 48;  // warnings, "CANCEL" and "SUCCESS" boxes

struct BoxMessage {
    std::string_view text;
    std::string_view title;
    int style = box_exclamation;

    bool operator==(const BoxMessage&) const = default;
};

}  // namespace kyt
