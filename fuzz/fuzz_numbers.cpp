// The number readers every file, reply and setting goes through: the
// leading number of a text, a numeric text, the 16-bit rounding, the
// boolean of a stored text. Their values are checked against the C library's
// reading of the same digits (this program runs in the C locale), and the
// number texts the console writes are checked to read back.
#include <cctype>
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "common/numbers.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

// Equal, or both too small for a normal double (where one reading may keep a
// subnormal that the other gives as zero).
bool same_value(double a, double b) {
    if (a == b) return true;
    return std::fabs(a) <= DBL_MIN && std::fabs(b) <= DBL_MIN && std::signbit(a) == std::signbit(b);
}

// The C library's value of a decimal text, "D" taken as the exponent mark,
// with the count of characters it read.
double c_value(std::string text, std::size_t& used) {
    for (char& c : text)
        if (c == 'D' || c == 'd') c = 'e';
    errno = 0;
    char* end = nullptr;
    const double v = std::strtod(text.c_str(), &end);
    used = static_cast<std::size_t>(end - text.c_str());
    return v;
}

// Texts the C library would read as hexadecimal, infinity or not-a-number,
// or that start with white space it passes over: none of them is a decimal
// number here.
bool c_reads_otherwise(std::string_view s) {
    if (!s.empty() && std::isspace(static_cast<unsigned char>(s[0]))) return true;
    if (!s.empty() && (s[0] == '+' || s[0] == '-')) s.remove_prefix(1);
    if (s.empty()) return false;
    const char c = s[0];
    if (c == 'i' || c == 'I' || c == 'n' || c == 'N') return true;
    return s.size() >= 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X');
}

void leading(std::string_view in) {
    const double v = kyt::leading_number(in);
    std::string squeezed;
    for (const char c : in)
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n') squeezed += c;
    if (squeezed.size() >= 2 && squeezed[0] == '&' && (squeezed[1] == 'H' || squeezed[1] == 'h' ||
                                                      squeezed[1] == 'O' || squeezed[1] == 'o')) {
        check(v >= 0);
        return;
    }
    if (c_reads_otherwise(squeezed) || squeezed.find('\0') != std::string::npos) return;
    std::size_t used = 0;
    const double c = c_value(squeezed, used);
    check(same_value(v, used == 0 ? 0.0 : c));
}

void numeric(std::string_view in) {
    const std::optional<double> v = kyt::numeric_value(in);
    check(v.has_value() == kyt::is_numeric(in));
    std::string_view t = in;
    while (!t.empty() && (t.front() == ' ' || t.front() == '\t')) t.remove_prefix(1);
    while (!t.empty() && (t.back() == ' ' || t.back() == '\t')) t.remove_suffix(1);
    if (v) {
        check(std::isfinite(*v));
        check(same_value(kyt::leading_number(in), *v));
    }
    if (t.empty() || c_reads_otherwise(t) || t.find('\0') != std::string_view::npos) return;
    // A text the C library reads whole to a value in range is numeric, with
    // that value, and the other way round.
    std::size_t used = 0;
    const double c = c_value(std::string(t), used);
    const bool whole = used == t.size() && std::isfinite(c) && errno != ERANGE;
    if (v) check(used == t.size() && same_value(*v, c));
    else check(!whole);
}

void round_trips(double v) {
    if (const auto r = kyt::to_int16(v)) check(std::fabs(*r - v) <= 0.5);
    else check(!(std::fabs(v) <= 32767.0));
    // General texts hold 15 significant digits (so the largest doubles do not
    // come back); "0.000" adds the rounding to its last decimal.
    if (!(std::fabs(v) <= 1e307)) return;
    const double g = kyt::leading_number(kyt::general_number(v));
    check(std::fabs(g - v) <= std::fabs(v) * 1e-14);
    if (std::fabs(v) < 1e12) {
        const double p = kyt::leading_number(kyt::format_picture(v, "0.000"));
        check(std::fabs(p - v) <= 0.0005 * (1 + 1e-9) + std::fabs(v) * 1e-14);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view in(reinterpret_cast<const char*>(data), size);
    leading(in);
    numeric(in);
    kyt::text_to_bool(in);
    round_trips(kyt::leading_number(in));
    return 0;
}
