#include "reports/header_replace.h"

#include <algorithm>

#include "common/numbers.h"
#include "common/text.h"
#include "common/file_text.h"

namespace kyt {

namespace {

// The line that takes the comment when a report has no "Comment:" label.
constexpr std::string_view comment_line = "        Comment: ______________________________________________________";

std::string filled_comment_line(std::string_view comment) {
    std::string s(comment_line);
    write_over(s, 18, comment);
    return s;
}

// Puts `piece` into the text before the 0-based place `at`; an anchor at or
// behind that place moves along.
void insert_at(std::string& text, std::size_t at, std::string_view piece, std::size_t& anchor) {
    at = std::min(at, text.size());
    text.insert(at, piece);
    if (anchor >= at) anchor += piece.size();
}

// The comment goes behind its label, or on a line of its own after the
// first 31 characters of the text, which are the title line up to its CR.
void write_comment(std::string& text, std::string_view comment, std::string_view before,
                   std::string_view after, std::size_t& anchor) {
    if (const std::size_t c = find1(text, "Comment:")) {
        write_over(text, c + 10, comment);
        return;
    }
    insert_at(text, 31, std::string(before) + filled_comment_line(comment) + std::string(after), anchor);
}

// The flow error of a downloaded summary: the average rate read from its
// line against the set rate, on a line put between the CR and the LF that
// end the average rate's line.
void insert_flow_error(std::string& text, std::string_view set_rates, std::size_t& anchor) {
    const std::size_t a = find1(text, "Average Rate:");
    if (a == 0) return;  // a summary without an average rate has no error to show
    const std::size_t b = find1(text, CRLF, a);
    double average = 0;
    if (b >= 4 && b - 4 > a + 13) average = leading_number(mid(text, a + 13, b - 4 - (a + 13)));
    const double rate = leading_number(set_rates);
    const std::string error = rate == 0 ? std::string("0.00%") : format_picture((average - rate) / rate, "0.00%");
    insert_at(text, b, "              Flow Error:     " + error, anchor);
}

}  // namespace

void write_over(std::string& text, std::size_t at, std::string_view value) {
    if (at < 1 || at > text.size()) return;
    const std::string trimmed = trim(value);
    const std::size_t n = std::min({value.size(), trimmed.size(), text.size() - at + 1});
    text.replace(at - 1, n, trimmed, 0, n);
}

std::string replace_header(std::string header_text, const ReportRec& rec, char download_mode) {
    std::size_t anchor = 0;
    return replace_header(std::move(header_text), rec, download_mode, anchor);
}

std::string replace_header(std::string header_text, const ReportRec& rec, char download_mode,
                           std::size_t& anchor) {
    struct Field {
        std::string_view key;
        const std::string& value;
        std::size_t offset;
        bool only_if_given;
    };
    const Field fields[] = {
        {"Manufacturer:", rec.manufacturer, 14, false}, {"Serial No.:", rec.serial_no, 12, false},
        {"Department:", rec.department, 12, false},     {"Set Rate(s):", rec.set_rates, 13, true},
        {"Model:", rec.model, 7, false},                {"Control No.:", rec.control_no, 13, false},
        {"Location: ", rec.location, 10, false},        {"VTBI:", rec.vtbi, 6, true},
    };
    for (const Field& f : fields) {
        if (f.only_if_given && f.value.empty()) continue;
        write_over(header_text, find1(header_text, f.key) + f.offset, f.value);
    }
    write_comment(header_text, rec.comment, std::string(1, LF), std::string(1, CR), anchor);
    if (download_mode == '1' && !rec.set_rates.empty()) insert_flow_error(header_text, rec.set_rates, anchor);
    return header_text;
}

std::string report_for_header(std::string_view edit_text, const ReportRec& rec, std::int16_t header_wanted) {
    const std::size_t start = find1(edit_text, "Start");
    std::string body = mid(edit_text, start > 8 ? start - 8 : 1);
    if (header_wanted == 1) {
        write_over(body, find1(body, "Rate(s):") + 9, rec.set_rates);
        write_over(body, find1(body, "VTBI:") + 6, rec.vtbi);
        std::size_t anchor = 0;
        write_comment(body, rec.comment, CRLF, CRLF, anchor);
    }
    const std::string first = left(body, find1(body, "Time:") + 4);
    const std::size_t set = find1(body, "Set");
    std::string text = first + std::string(CRLF) + std::string(CRLF) + mid(body, set > 8 ? set - 8 : 1);
    if (const std::size_t cut = find1(text, "Set Rate")) text.resize(cut - 1);
    return text;
}

std::string join_lines(std::string_view file_text) {
    std::string s;
    s.reserve(file_text.size() + 64);
    for (const std::string& l : split_lines(file_text)) s += l + std::string(CRLF);
    return s;
}

ReportForHeader open_report_for_header(std::string_view edit_text, const ReportRec& rec,
                                       std::int16_t header_wanted, const std::string& file_name) {
    ReportForHeader r{report_for_header(edit_text, rec, header_wanted), std::nullopt};
    if (trim(file_name).empty()) {
        r.message = BoxMessage{"Opening file cancelled.", "CANCEL", box_exclamation};
        return r;
    }
    if (const auto file_text = read_text_file(trim(file_name))) r.report_text += join_lines(*file_text);
    return r;
}

}  // namespace kyt
