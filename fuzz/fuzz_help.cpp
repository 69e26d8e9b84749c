// A help topic file's bytes as the topic window's text, in both help
// contexts. load_help_page only finds and reads the file; the text is made
// here. Checked: the result is well-formed UTF-8 with one character for every
// byte that is not a line end, one blank behind every line, and four
// characters (CR LF CR LF) before each paragraph; no other control character
// reaches the window.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "help/help_topics.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

struct Lines {
    std::size_t count = 0;          // lines, the last one with or without its end
    std::size_t end_bytes = 0;      // bytes taken by line ends
};

// CR LF, a lone CR and a lone LF each end one line.
Lines count_lines(std::string_view bytes) {
    Lines l;
    std::size_t i = 0;
    bool open_line = false;
    while (i < bytes.size()) {
        if (bytes[i] == '\r' || bytes[i] == '\n') {
            const std::size_t n = bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n' ? 2 : 1;
            l.end_bytes += n;
            ++l.count;
            i += n;
            open_line = false;
        } else {
            open_line = true;
            ++i;
        }
    }
    if (open_line) ++l.count;
    return l;
}

// Characters of well-formed UTF-8 (at most three bytes each, as code page
// 1252 needs), and the paragraph marks; aborts on a stray control character.
void check_text(const std::string& text, std::string_view bytes) {
    std::size_t chars = 0, marks = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        const auto b = static_cast<unsigned char>(text[i]);
        if (b == '\r') {
            check(text.compare(i, 4, "\r\n\r\n") == 0);
            ++marks;
            i += 4;
            continue;
        }
        check(b >= 0x20 && b != 0x7F);
        std::size_t n = 1;
        if (b >= 0x80) {
            check(b >= 0xC2 && b <= 0xEF);
            n = b >= 0xE0 ? 3 : 2;
            check(i + n <= text.size());
            for (std::size_t k = 1; k < n; ++k) check((static_cast<unsigned char>(text[i + k]) & 0xC0) == 0x80);
        }
        ++chars;
        i += n;
    }
    const Lines lines = count_lines(bytes);
    check(marks <= lines.count);
    check(chars == bytes.size() - lines.end_bytes + lines.count);
    check(text.empty() == bytes.empty());
    check(text.empty() || text.back() == ' ');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    for (const kyt::HelpContext context : {kyt::HelpContext::main, kyt::HelpContext::graph})
        check_text(kyt::help_text(bytes, context), bytes);
    return 0;
}
