#pragma once
// The shortest decimal text that reads back to the same value: a double as a
// double, a single-precision value as single precision ("0.1f" gives "0.1",
// not the digits of its double widening).

#include <string>

namespace kyt {

std::string shortest_text(double v);
std::string shortest_text(float v);

}  // namespace kyt
