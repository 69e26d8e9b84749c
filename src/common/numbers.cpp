#include "common/numbers.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>

namespace kyt {

namespace {

bool skippable(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// The text without the blanks that the leading-number reading passes over.
std::string squeeze(std::string_view s) {
    std::string r;
    r.reserve(s.size());
    for (char c : s)
        if (!skippable(c)) r += c;
    return r;
}

double read_radix(std::string_view s, int radix) {
    double v = 0;
    for (char c : s) {
        int d;
        if (c >= '0' && c <= '9') d = c - '0';
        else if (radix == 16 && std::isxdigit(static_cast<unsigned char>(c)))
            d = std::toupper(static_cast<unsigned char>(c)) - 'A' + 10;
        else break;
        if (d >= radix) break;
        v = v * radix + d;
    }
    return v;
}

}  // namespace

namespace {

bool digit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// Reads a decimal number from position i on: sign, digits, point, digits,
// and an exponent when it has digits. Returns the text read, empty when no
// digit stood there; i ends behind what was read. A dangling exponent mark
// is left unread, and `dangling` says so.
std::string scan_decimal(std::string_view s, std::size_t& i, bool& dangling) {
    std::string num;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) num += s[i++];
    bool digits = false;
    while (i < s.size() && digit(s[i])) { num += s[i++]; digits = true; }
    if (i < s.size() && s[i] == '.') {
        num += s[i++];
        while (i < s.size() && digit(s[i])) { num += s[i++]; digits = true; }
    }
    dangling = false;
    if (!digits) return {};
    if (i < s.size() && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
        std::size_t j = i + 1;
        std::string exp = "e";
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) exp += s[j++];
        bool exp_digits = false;
        while (j < s.size() && digit(s[j])) { exp += s[j++]; exp_digits = true; }
        if (exp_digits) {
            num += exp;
            i = j;
        } else {
            dangling = true;
        }
    }
    return num;
}

// The power of ten of the first significant digit of an unsigned text that
// scan_decimal read ("0.05" gives -2, "120e3" gives 5); a text of zeros
// gives -1. Only its sign is wanted, so a long exponent is held at a
// billion.
long decimal_order(std::string_view num) {
    const std::size_t e = num.find('e');
    long exponent = 0;
    if (e != std::string_view::npos) {
        std::size_t j = e + 1;
        const bool minus = j < num.size() && num[j] == '-';
        if (j < num.size() && (num[j] == '+' || num[j] == '-')) ++j;
        for (; j < num.size() && exponent < 1'000'000'000; ++j) exponent = exponent * 10 + (num[j] - '0');
        if (minus) exponent = -exponent;
        num = num.substr(0, e);
    }
    const std::size_t point = std::min(num.find('.'), num.size());
    const std::size_t first = num.find_first_not_of("0.");
    if (first == std::string_view::npos) return -1;
    const long order = first < point ? static_cast<long>(point - first) - 1 : -static_cast<long>(first - point);
    return order + exponent;
}

// The value of a text that scan_decimal read. The C library's conversions
// follow the locale the program runs in, which may want a decimal comma;
// the console's files always hold a point, so the conversion here is the
// locale-free one. A value beyond a double's range reads as infinity, a
// value too small for it as zero, each with its sign; which of the two it
// is follows from the place of its first significant digit, not from how
// the text starts ("0999...9" with 400 nines is too large).
double decimal_value(std::string_view num) {
    const bool negative = !num.empty() && num[0] == '-';
    if (!num.empty() && (num[0] == '+' || num[0] == '-')) num.remove_prefix(1);
    double v = 0;
    const auto [end, ec] = std::from_chars(num.data(), num.data() + num.size(), v);
    if (ec == std::errc::result_out_of_range)
        v = decimal_order(num) < 0 ? 0.0 : std::numeric_limits<double>::infinity();
    return negative ? -v : v;
}

}  // namespace

double leading_number(std::string_view input) {
    const std::string s = squeeze(input);
    if (s.size() >= 2 && s[0] == '&') {
        const char k = static_cast<char>(std::toupper(static_cast<unsigned char>(s[1])));
        if (k == 'H') return read_radix(std::string_view(s).substr(2), 16);
        if (k == 'O') return read_radix(std::string_view(s).substr(2), 8);
    }
    std::size_t i = 0;
    bool dangling = false;
    const std::string num = scan_decimal(s, i, dangling);
    return num.empty() ? 0.0 : decimal_value(num);
}

std::optional<double> numeric_value(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    std::size_t i = 0;
    while (i < text.size() && blank(text[i])) ++i;
    bool dangling = false;
    const std::string num = scan_decimal(text, i, dangling);
    if (num.empty() || dangling) return std::nullopt;
    while (i < text.size() && blank(text[i])) ++i;
    if (i != text.size()) return std::nullopt;
    const double v = decimal_value(num);
    if (!std::isfinite(v)) return std::nullopt;
    return v;
}

bool is_numeric(std::string_view text) { return numeric_value(text).has_value(); }

double round_half_even(double v) {
    if (!std::isfinite(v)) return v;
    const double f = std::floor(v);
    const double diff = v - f;
    if (diff > 0.5) return f + 1;
    if (diff < 0.5) return f;
    return std::fmod(f, 2.0) == 0.0 ? f : f + 1;
}

std::optional<std::int16_t> to_int16(double v) {
    const double r = round_half_even(v);
    if (!(r >= std::numeric_limits<std::int16_t>::min() && r <= std::numeric_limits<std::int16_t>::max()))
        return std::nullopt;
    return static_cast<std::int16_t>(r);
}

std::string format_picture(double v, std::string_view picture) {
    const bool percent = !picture.empty() && picture.back() == '%';
    if (percent) {
        picture.remove_suffix(1);
        v *= 100.0;
    }
    // Checked after the scaling: a percentage of a value near the top of a
    // double is infinite.
    if (!std::isfinite(v)) return general_number(v) + (percent ? "%" : "");
    const auto point = picture.find('.');
    const int int_zeros = static_cast<int>(point == std::string_view::npos ? picture.size() : point);
    const int decimals = point == std::string_view::npos ? 0 : static_cast<int>(picture.size() - point - 1);
    const bool negative = std::signbit(v) && v != 0.0;

    // The value at 15 significant digits: d0.d1...d14 times ten to the exp.
    char buf[40];
    const auto printed = std::to_chars(buf, buf + sizeof buf - 1, std::fabs(v), std::chars_format::scientific, 14);
    *printed.ptr = '\0';
    std::string digits;
    for (const char* p = buf; *p && *p != 'e'; ++p)
        if (std::isdigit(static_cast<unsigned char>(*p))) digits += *p;
    int exp = std::atoi(std::strchr(buf, 'e') + 1);

    // Keep the digits up to the last decimal, rounding half away from zero.
    const int keep = exp + 1 + decimals;
    std::string kept;
    if (keep >= 0) {
        if (keep >= static_cast<int>(digits.size()))
            kept = digits + std::string(keep - digits.size(), '0');
        else {
            kept = digits.substr(0, keep);
            if (digits[keep] >= '5') {
                int i = keep - 1;
                for (; i >= 0; --i) {
                    if (kept[i] == '9') kept[i] = '0';
                    else { ++kept[i]; break; }
                }
                if (i < 0) kept.insert(kept.begin(), '1');
            }
        }
    }
    // kept now holds the whole number value * 10^decimals.
    const std::size_t first = kept.find_first_not_of('0');
    kept = first == std::string::npos ? std::string() : kept.substr(first);
    if (static_cast<int>(kept.size()) < decimals + int_zeros)
        kept.insert(0, decimals + int_zeros - kept.size(), '0');
    std::string out = negative ? "-" : "";
    out += kept.substr(0, kept.size() - decimals);
    if (decimals > 0) out += "." + kept.substr(kept.size() - decimals);
    if (percent) out += '%';
    return out;
}

std::string general_number(double v) {
    if (std::isnan(v)) return "NaN";
    if (std::isinf(v)) return v < 0 ? "-Inf" : "Inf";
    if (v == 0.0) return "0";
    char buf[40];
    const auto printed = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, 15);
    std::string s(buf, printed.ptr);
    const auto e = s.find('e');
    if (e == std::string::npos) return s;
    // Exponent form: mantissa without trailing zeros, "E", sign, two digits.
    std::string mant = s.substr(0, e);
    int exp = std::atoi(s.c_str() + e + 1);
    char ebuf[16];
    std::snprintf(ebuf, sizeof ebuf, "E%c%02d", exp < 0 ? '-' : '+', std::abs(exp));
    return mant + ebuf;
}

bool text_to_bool(std::string_view s) {
    std::string t;
    for (char c : s)
        if (c != ' ') t += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (t == "true") return true;
    if (t == "false" || t.empty()) return false;
    return leading_number(t) != 0.0;
}

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

CivilTime local_now() {
    const std::time_t t = std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, tm.tm_wday};
}

std::string format_date(const CivilTime& t, std::string_view picture) {
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    static const char* const days[] = {"Sunday", "Monday", "Tuesday", "Wednesday",
                                       "Thursday", "Friday", "Saturday"};
    char buf[64];
    const char* month = months[(t.month - 1 + 12) % 12];
    if (picture == "hh:mm") {
        std::snprintf(buf, sizeof buf, "%02d:%02d", t.hour, t.minute);
    } else if (picture == "dddd, mmm d yyyy") {
        std::snprintf(buf, sizeof buf, "%s, %s %d %d", days[(t.weekday % 7 + 7) % 7], month, t.day, t.year);
    } else {  // "mmm d yyyy"
        std::snprintf(buf, sizeof buf, "%s %d %d", month, t.day, t.year);
    }
    return buf;
}

}  // namespace kyt
