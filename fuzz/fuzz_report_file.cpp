// A report file opened in the editor and printed: the test for a report,
// the editor's text of the file, the lines joined behind a report, and the
// print's lines and page breaks. The first byte says how long the name to
// print is; the rest is the file.
//
// Checked: the editor's text ends every line in CR LF and stays the same
// when read again; the print gives each line of the file at its own length,
// in order, with at most one page break before it, and the file name written
// over a line never runs past it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"
#include "reports/header_replace.h"
#include "reports/report_file.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string_view name = rest.substr(0, std::min<std::size_t>(data[0] % 72, rest.size()));
    const std::string_view file = rest.substr(name.size());

    kyt::is_report_text(file);
    const std::string text = kyt::report_text_of_file(file);
    check(text.empty() == file.empty());
    check(text.empty() || text.ends_with("\r\n"));
    check(kyt::report_text_of_file(text) == text);
    check(kyt::join_lines(file) == text);

    const std::vector<kyt::PrintStep> steps = kyt::report_print_steps(file, name);
    std::size_t i = 0, pos = 0;
    std::string_view line;
    bool summary = false;
    while (kyt::next_line(file, pos, line)) {
        // From the summary on, a form feed's page brings its page mark and
        // the file's name first.
        summary = summary || line.find("SUMMARY") != std::string_view::npos;
        if (summary && line.find('\f') != std::string_view::npos) {
            check(i + 4 < steps.size() && steps[i].kind == kyt::PrintStep::new_page);
            check(steps[i + 4].text == "        Filename " + std::string(name));
            i += 5;
        }
        if (i < steps.size() && steps[i].kind == kyt::PrintStep::new_page) ++i;
        check(i < steps.size() && steps[i].kind == kyt::PrintStep::line);
        check(steps[i].text.size() == line.size());
        if (line.size() > 8) check(steps[i].text.compare(0, 8, line, 0, 8) == 0);
        ++i;
    }
    check(i == steps.size());
    return 0;
}
