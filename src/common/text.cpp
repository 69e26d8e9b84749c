#include "common/text.h"

#include <algorithm>
#include <cctype>

namespace kyt {

std::string ltrim(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size() && s[i] == ' ') ++i;
    return std::string(s.substr(i));
}

std::string rtrim(std::string_view s) {
    std::size_t n = s.size();
    while (n > 0 && s[n - 1] == ' ') --n;
    return std::string(s.substr(0, n));
}

std::string trim(std::string_view s) { return ltrim(rtrim(s)); }

std::string upper(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return r;
}

bool iequals(std::string_view a, std::string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

std::size_t find1(std::string_view hay, std::string_view needle, std::size_t start) {
    if (start < 1 || start > hay.size() + 1) return 0;
    const auto p = hay.find(needle, start - 1);
    return p == std::string_view::npos ? 0 : p + 1;
}

std::string mid(std::string_view s, std::size_t start, std::size_t len) {
    if (start < 1 || start > s.size()) return {};
    return std::string(s.substr(start - 1, len));
}

std::string left(std::string_view s, std::size_t n) { return std::string(s.substr(0, n)); }

std::string right(std::string_view s, std::size_t n) {
    return n >= s.size() ? std::string(s) : std::string(s.substr(s.size() - n));
}

bool contains(std::string_view hay, std::string_view needle) {
    return hay.find(needle) != std::string_view::npos;
}

bool starts_with(std::string_view s, std::string_view prefix) { return s.starts_with(prefix); }

bool ends_with(std::string_view s, std::string_view suffix) { return s.ends_with(suffix); }

std::string spaces(std::size_t n) { return std::string(n, ' '); }

std::string replace_underlined_field(std::string_view blank, std::string_view value) {
    if (value.size() <= blank.size())
        return std::string(value) + std::string(blank.substr(0, blank.size() - value.size()));
    return std::string(value.substr(0, blank.size()));
}

std::vector<std::string> split_lines(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t end = text.find(LF, begin);
        if (end == std::string_view::npos) {
            lines.emplace_back(text.substr(begin));
            break;
        }
        std::size_t stop = end;
        if (stop > begin && text[stop - 1] == CR) --stop;
        lines.emplace_back(text.substr(begin, stop - begin));
        begin = end + 1;
    }
    return lines;
}

}  // namespace kyt
