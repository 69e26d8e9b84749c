#pragma once
// Text helpers of the core. Text is bytes: one byte a character, as in the
// files and on the serial line. Positions are 1-based where the console's own
// procedures count that way (find, mid), and a "not found" is 0.

#include <string>
#include <string_view>
#include <vector>

namespace kyt {

inline constexpr char CR = '\r';
inline constexpr char LF = '\n';
inline constexpr char FF = '\f';
inline constexpr char BELL = '\x07';  // ends a text stream from the analyser
inline constexpr char ENQ = '\x05';   // marks a line that is left out
inline constexpr std::string_view CRLF = "\r\n";

// Blanks only (character 32) are taken off, as the console's trim does.
// The _view forms give a view into the text, without a copy.
std::string_view trim_view(std::string_view s);
std::string_view ltrim_view(std::string_view s);
std::string_view rtrim_view(std::string_view s);
std::string trim(std::string_view s);
std::string ltrim(std::string_view s);
std::string rtrim(std::string_view s);

std::string upper(std::string_view s);
std::string lower(std::string_view s);
bool iequals(std::string_view a, std::string_view b);

// 1-based position of needle in hay at or after start, 0 when absent.
// An empty needle is found at start (when start lies within hay + 1).
std::size_t find1(std::string_view hay, std::string_view needle, std::size_t start = 1);

// Characters from 1-based start, at most len of them; past the end gives "".
std::string mid(std::string_view s, std::size_t start, std::size_t len = std::string_view::npos);
std::string left(std::string_view s, std::size_t n);
std::string right(std::string_view s, std::size_t n);

bool contains(std::string_view hay, std::string_view needle);
bool starts_with(std::string_view s, std::string_view prefix);
bool ends_with(std::string_view s, std::string_view suffix);

std::string spaces(std::size_t n);

// A line of a file: the text and CR LF; indented_line puts blanks before it.
std::string text_line(std::string_view text);
std::string indented_line(std::size_t blanks, std::string_view text);

// Fits a value into a fixed-width run of underscores: the value and the rest
// of the blank behind it, or the value cut to the blank's width.
std::string replace_underlined_field(std::string_view blank, std::string_view value);

// The value through a blank of `width` underscores, so that a column never
// shifts: a short value keeps the rest of the blank, a long one is cut.
std::string fit_field(std::string_view value, std::size_t width);

// A report's text cut 10 characters before the first "Tech", which takes off
// the analyser's own technician line and everything behind it. Without
// "Tech" the text stays whole; a "Tech" within the first 10 characters
// leaves nothing.
std::string cut_at_tech(std::string text);

// Splits at CR LF; a lone LF or a lone CR also ends a line, and the CRs
// right before an LF are taken off with it. A text that ends in a line end
// gives no empty last line.
std::vector<std::string> split_lines(std::string_view text);

// The same cut one line at a time, as a view into the text: the line from
// pos on, with pos moved behind it; false when the text is used up.
bool next_line(std::string_view text, std::size_t& pos, std::string_view& line);

}  // namespace kyt
