#pragma once
// Number conversions of the core, each exactly as the console's files and
// screens need them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kyt {

// The leading number of a text: blanks, tabs and line ends are skipped
// anywhere, then an optional sign, digits, a decimal point and an exponent
// ("E" or "D") are read as far as they go; "&H" and "&O" read hexadecimal and
// octal. A text with no leading number is 0.
double leading_number(std::string_view s);

// A numeric text as the platform's text-to-number conversion accepts it:
// blanks around, a sign, digits with at most one decimal point and an
// exponent ("E" or "D") with its own sign. An empty text, two numbers in one
// text, and a value beyond the range of a double are not numeric.
bool is_numeric(std::string_view text);
// The value of a numeric text; empty when the text is not numeric.
std::optional<double> numeric_value(std::string_view text);

// Rounds to the nearest whole number, halves to the even neighbour.
double round_half_even(double v);

// A double to a signed 16-bit integer, rounding halves to even; empty when the
// rounded value does not fit.
std::optional<std::int16_t> to_int16(double v);

// Formats with a number picture: zeros before the point set the least number
// of integer digits (no maximum), zeros after it the fixed decimals, a closing
// "%" multiplies by 100 and shows the sign. "00", "000", "0000", "0.000",
// "00.00", "000.0", "0.00" and "0.00%" are the pictures in use. The value is
// first taken at 15 significant digits and then rounded half away from zero.
std::string format_picture(double v, std::string_view picture);

// The general text of a double: at most 15 significant digits, no trailing
// zeros, no picture (12.5 gives "12.5", 3 gives "3"); very large or small
// values use the exponent form "1.5E+20", "1E-07".
std::string general_number(double v);

// A stored text as a boolean: "True" and "False" in any case, or a number
// (true when not 0). Anything else is false.
bool text_to_bool(std::string_view s);

// The shortest decimal text that reads back to the same value: a double as a
// double, a single-precision value as single precision (0.1f gives "0.1",
// not the digits of its double widening).
std::string shortest_text(double v);
std::string shortest_text(float v);

// Local calendar time, as the head writers and print headers take it.
struct CivilTime {
    int year = 2000, month = 1, day = 1;     // month 1 to 12
    int hour = 0, minute = 0, second = 0;
    int weekday = 6;                          // 0 Sunday to 6 Saturday
};
CivilTime local_now();

// Date and time pictures: "mmm d yyyy" (Nov 3 2026), "hh:mm" (24 hours),
// "dddd, mmm d yyyy" (Tuesday, Nov 3 2026).
std::string format_date(const CivilTime& t, std::string_view picture);

}  // namespace kyt
