#include "common/text.h"

#include <algorithm>
#include <cctype>

namespace kyt {

std::string_view ltrim_view(std::string_view s) {
    const std::size_t first = s.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view() : s.substr(first);
}

std::string_view rtrim_view(std::string_view s) {
    const std::size_t last = s.find_last_not_of(' ');
    return last == std::string_view::npos ? std::string_view() : s.substr(0, last + 1);
}

std::string_view trim_view(std::string_view s) { return ltrim_view(rtrim_view(s)); }

std::string ltrim(std::string_view s) { return std::string(ltrim_view(s)); }
std::string rtrim(std::string_view s) { return std::string(rtrim_view(s)); }
std::string trim(std::string_view s) { return std::string(trim_view(s)); }

std::string upper(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return r;
}

std::string lower(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
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

std::string text_line(std::string_view text) { return std::string(text) + std::string(CRLF); }

std::string indented_line(std::size_t blanks, std::string_view text) { return text_line(spaces(blanks) + std::string(text)); }

std::string replace_underlined_field(std::string_view blank, std::string_view value) {
    if (value.size() <= blank.size())
        return std::string(value) + std::string(blank.substr(0, blank.size() - value.size()));
    return std::string(value.substr(0, blank.size()));
}

std::string fit_field(std::string_view value, std::size_t width) {
    return replace_underlined_field(std::string(width, '_'), value);
}

std::string cut_at_tech(std::string text) {
    const std::size_t p = find1(text, "Tech");
    if (p > 0) text.resize(p > 10 ? p - 10 : 0);
    return text;
}

bool next_line(std::string_view text, std::size_t& pos, std::string_view& line) {
    if (pos >= text.size()) return false;
    const std::size_t end = text.find_first_of("\r\n", pos);
    if (end == std::string_view::npos) {
        line = text.substr(pos);
        pos = text.size();
        return true;
    }
    line = text.substr(pos, end - pos);
    // CRs before an LF belong to its line end (a transfer may double the
    // CR); a CR that no LF follows ends the line by itself, as in a file
    // whose LFs were taken out.
    std::size_t next = end;
    while (next < text.size() && text[next] == CR) ++next;
    pos = next < text.size() && text[next] == LF ? next + 1 : end + 1;
    return true;
}

std::vector<std::string> split_lines(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t pos = 0;
    std::string_view line;
    while (next_line(text, pos, line)) lines.emplace_back(line);
    return lines;
}

}  // namespace kyt
