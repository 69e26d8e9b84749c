#include "reports.h"

#include <algorithm>
#include <vector>

#include "acquisition/logformat.h"
#include "common/numbers.h"
#include "common/text.h"

namespace sim {

using kyt::format_picture;
using kyt::indented_line;
using kyt::spaces;
using kyt::text_line;

namespace {

constexpr std::size_t label_indent = 8;
constexpr std::size_t table_indent = 9;

std::string blank(std::size_t width) { return std::string(width, '_'); }

std::string two(int v) { return format_picture(v, "00"); }

std::string hhmmss(int seconds) { return two(seconds / 3600) + ":" + two(seconds / 60 % 60) + ":" + two(seconds % 60); }

kyt::CivilTime civil(std::time_t t) {
    std::tm tm{};
    localtime_r(&t, &tm);
    return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, tm.tm_wday};
}

// The page mark stands at the end of the 30-character title line.
std::string page_line(int page) {
    const std::string mark = "p. " + two(page);
    return text_line(spaces(30 - mark.size()) + mark);
}

// Title, date and the header of the device under test with its underlined
// blanks, each label where the console looks for it and the blank starting
// at the offset the console writes from.
std::string report_head(std::string_view title, std::time_t started) {
    const kyt::CivilTime t = civil(started);
    std::string s = page_line(1) + text_line("");
    s += indented_line(28, "MAROVANT 4500-K");
    s += indented_line(26, "Corvane Systems Inc.");
    s += text_line("");
    s += indented_line(table_indent, title);
    s += text_line("");
    s += indented_line(label_indent, "Test Date: " + kyt::format_date(t, "mmm d yyyy") + "    Start Time: " +
                                    kyt::format_date(t, "hh:mm"));
    s += text_line("");
    s += indented_line(label_indent, "Manufacturer: " + blank(18) + " Model: " + blank(22));
    s += text_line("");
    s += indented_line(label_indent, "Serial No.: " + blank(20) + " Control No.: " + blank(16));
    s += text_line("");
    s += indented_line(label_indent, "Department: " + blank(20) + " Location: " + blank(19));
    s += text_line("");
    s += indented_line(label_indent, "Set Rate(s): " + blank(13) + " ml/h  VTBI: " + blank(20) + " ml");
    s += text_line("");
    s += indented_line(label_indent, "Comment:  " + blank(52));
    s += text_line("");
    return s;
}

std::string range_name(char range) {
    switch (range) {
        case 'A': return "LOW";
        case 'B': return "HI";
        default: return "PUL";
    }
}

std::string figure(std::string_view label, const std::string& value, std::string_view unit) {
    std::string text = std::string(label);
    text += spaces(text.size() < 22 ? 22 - text.size() : 1) + value;
    if (!unit.empty()) text += " " + std::string(unit);
    return indented_line(label_indent, text);
}

// The rows the figures of a summary are taken from: the logged ones, or the
// newest measurement while the test is younger than one interval.
std::vector<Sample> measured(const TestModel& test) {
    if (!test.log().empty()) return test.log();
    return {test.now()};
}

std::string signature_lines() {
    return text_line("") + indented_line(table_indent, "Technician: " + blank(20) + "  Signature: " + blank(20)) + text_line("") +
           indented_line(table_indent, "Date: " + blank(12));
}

std::string single_rate_summary(const TestModel& test) {
    const auto rows = measured(test);
    const auto [lo, hi] = std::minmax_element(rows.begin(), rows.end(),
                                              [](const Sample& a, const Sample& b) { return a.flow < b.flow; });
    double pressure = 0;
    for (const auto& r : rows) pressure += r.pressure;
    pressure /= static_cast<double>(rows.size());
    const Sample& last = test.now();
    std::string s;
    s += figure("Test Duration:", hhmmss(last.elapsed), "");
    s += figure("Volume Infused:", format_picture(last.volume, "0.000"), "ml");
    s += figure("Average Rate:", format_picture(last.avg_flow, "0.00"), "ml/h");
    s += figure("Maximum Flow:", format_picture(hi->flow, "0.00"), "ml/h");
    s += figure("Minimum Flow:", format_picture(lo->flow, "0.00"), "ml/h");
    s += figure("Back Pressure:", format_picture(pressure, "0.0"), "mmHg (mean)");
    return s;
}

std::string occlusion_summary(const TestModel& test) {
    const auto rows = measured(test);
    const auto peak = std::max_element(rows.begin(), rows.end(),
                                       [](const Sample& a, const Sample& b) { return a.psi < b.psi; });
    const Sample& last = test.now();
    std::string s;
    s += figure("Test Duration:", hhmmss(last.elapsed), "");
    s += figure("Peak Pressure:", format_picture(peak->psi, "0.00") + " psi  " + format_picture(peak->mmhg, "0"),
                "mmHg");
    s += figure("Time to Peak:", hhmmss(peak->elapsed), "");
    s += figure("Volume Infused:", format_picture(last.volume, "0.000"), "ml");
    s += figure("Average Rate:", format_picture(last.avg_flow, "0.00"), "ml/h");
    return s;
}

// The rows of a data log in the console's own column layout, so that the
// log reader and the spreadsheet conversion read both alike.
std::string flow_row(const Sample& r) {
    return kyt::single_rate_row(
        {r.elapsed / 3600, r.elapsed / 60 % 60, r.elapsed % 60, r.flow, r.avg_flow, r.volume, r.pressure});
}

std::string pressure_row(const Sample& r) {
    return kyt::occlusion_row({r.elapsed / 60, r.elapsed % 60, r.psi, r.mmhg});
}

std::string column_heads(TestKind kind) {
    if (kind == TestKind::single_rate)
        return indented_line(table_indent, "Elapsed   Flow  Avg Flow  Volume  B.Pres") +
               indented_line(table_indent, "  Time    (ml/h)  (ml/h)    (ml)  (mmHg)");
    return indented_line(12, "Elapsed Time       Occlusion Pressure") +
           indented_line(12, "                     (psi)     (mmHg)");
}

int count_lines(std::string_view text) { return static_cast<int>(std::count(text.begin(), text.end(), '\n')); }

}  // namespace

char flow_range(double set_rate) { return set_rate < 5 ? 'C' : set_rate < 30 ? 'A' : 'B'; }

std::string summary_text(char channel, const TestModel& test, std::time_t started) {
    const bool single = test.kind() == TestKind::single_rate;
    std::string s = report_head(single ? "SINGLE RATE TEST SUMMARY" : "OCCLUSION PRESSURE TEST SUMMARY", started);
    std::string where = "Channel: " + std::string(1, channel);
    if (single) where += "          Flow Range: " + range_name(flow_range(test.pump().rate));
    s += indented_line(label_indent, where);
    s += text_line("");
    s += single ? single_rate_summary(test) : occlusion_summary(test);
    s += signature_lines();
    return s;
}

std::string data_log_text(char channel, const TestModel& test, std::time_t started) {
    const bool single = test.kind() == TestKind::single_rate;
    std::string s = report_head("INFUSION DEVICE DATA LOG", started);
    s += indented_line(label_indent, "Channel: " + std::string(1, channel) + "          Log Interval: " +
                                    std::to_string(test.log_interval()) + " s");
    s += text_line("");
    s += indented_line(table_indent, single ? "SINGLE RATE TEST" : "OCCLUSION PRESSURE TEST");
    s += text_line("");
    s += column_heads(test.kind());

    // A further page opens with a form feed line and five more: the same
    // count as the console's own continuation head.
    int lines = count_lines(s);
    int page = 1;
    for (const Sample& r : test.log()) {
        if (lines >= log_page_lines) {
            const std::string head = text_line(std::string(1, kyt::FF)) + text_line("") + page_line(++page) + text_line("") +
                                     column_heads(test.kind());
            s += head;
            lines = count_lines(head);
        }
        s += single ? flow_row(r) : pressure_row(r);
        ++lines;
    }
    s += text_line("");
    s += spaces(table_indent) + "END OF DATA";
    return s;
}

}  // namespace sim
