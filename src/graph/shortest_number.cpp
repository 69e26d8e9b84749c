#include "graph/shortest_number.h"

#include <charconv>

namespace kyt {

namespace {

template <typename T>
std::string shortest(T v) {
    char buffer[64];
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
    return ec == std::errc() ? std::string(buffer, end) : std::string();
}

}  // namespace

std::string shortest_text(double v) { return shortest(v); }
std::string shortest_text(float v) { return shortest(v); }

}  // namespace kyt
