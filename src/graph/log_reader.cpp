#include "graph/log_reader.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "common/file_text.h"
#include "common/numbers.h"
#include "common/text.h"

namespace kyt {

namespace {

// Headings of the test kinds that cannot be graphed, compared with the start
// of a trimmed line.
struct RefusedKind {
    std::string_view heading;
    bool LogReadResult::*flag;
    std::string_view text;
    std::string_view title;
};
constexpr RefusedKind refused_kinds[] = {
    {"OCCLUSION PRESSURE TEST", &LogReadResult::occlusion_test,
     "Occlusion Pressure test Graph not implemented", "Occlusion Data"},
    {"P.C.A. PUMP TEST", &LogReadResult::pca_test, "PCA test Graph not implemented", "PCA Data"},
    {"DUAL RATE TEST", &LogReadResult::dual_rate_test, "Dual Rate Test Graph not implemented",
     "Dual Rate Test Data"},
};

// The four marks a log must show before its rows count. The continuation
// head is spelled "Elasped" and does not set the "Elapsed" mark; it need not,
// since a mark stays set once seen.
constexpr std::string_view model_mark = "MAROVANT";
constexpr std::string_view single_rate_mark = "SINGLE RATE TEST";
constexpr std::string_view elapsed_mark = "Elapsed";
constexpr std::string_view time_mark = "Time";
constexpr std::string_view end_of_data = "END OF DATA";

constexpr int fields_per_record = 5;

BoxMessage error_box(std::string text) { return {std::move(text), "ERROR", box_critical}; }

BoxMessage open_error() { return error_box("Error opening LOG file for graphing, graphing cancelled"); }

BoxMessage line_error(std::string_view what, std::size_t line_number) {
    return error_box(std::string(what) + " in line " + std::to_string(line_number) + "; graphing cancelled");
}

// A data record is a line whose third and sixth characters are ":".
bool record_shaped(std::string_view trimmed) {
    return trimmed.size() >= 6 && trimmed[2] == ':' && trimmed[5] == ':';
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// A plain decimal: an optional sign, digits with at most one point, and
// nothing else. Its leading-number value is the correctly rounded value of
// the whole text, which from_chars gives without the general reader's copies.
bool plain_decimal(std::string_view s) {
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
    bool digits = false, point = false;
    for (; i < s.size(); ++i) {
        if (is_digit(s[i])) digits = true;
        else if (s[i] == '.' && !point) point = true;
        else return false;
    }
    return digits;
}

// ---- counting pass -------------------------------------------------------

void count_records(std::string_view text, LogReadResult& r) {
    r.graph_file_ok = true;
    int count = 0;
    std::size_t pos = 0;
    std::string_view raw;
    while (r.graph_file_ok && next_line(text, pos, raw)) {
        const std::string_view line = trim_view(raw);
        for (const RefusedKind& kind : refused_kinds) {
            if (line.starts_with(kind.heading)) {
                r.*kind.flag = true;
                r.message = BoxMessage{std::string(kind.text), std::string(kind.title), box_exclamation};
                r.graph_file_ok = false;
            }
        }
        if (r.graph_file_ok && record_shaped(line)) {
            // The count is a signed 16-bit index: one record more than it
            // holds fails the pass as an unreadable file does.
            if (count == std::numeric_limits<std::int16_t>::max()) {
                r.series.graph_last_index = static_cast<std::int16_t>(count);
                r.message = open_error();
                r.graph_file_ok = false;
                return;
            }
            ++count;
        }
    }
    LogSeries& s = r.series;
    s.graph_last_index = static_cast<std::int16_t>(count - 1);
    if (s.graph_last_index > 0) {
        const std::size_t size = static_cast<std::size_t>(s.graph_last_index) + 1;
        s.graph_time.assign(size, 0.0);
        s.graph_flow.assign(size, 0.0);
        s.graph_avg_flow.assign(size, 0.0);
        s.graph_volume.assign(size, 0.0);
        s.graph_pressure.assign(size, 0);
        s.graph_valid = true;
    }
    if (s.graph_last_index < 3 && r.graph_file_ok) {
        s.graph_valid = false;
        r.message = BoxMessage{"Insufficient number of Graph Points", "Insufficient Points",
                                 box_exclamation};
    }
}

// ---- reading pass --------------------------------------------------------

// Splits the five fields of a record into s at index i. A field ends at the
// first blank, the rest goes on behind it with its leading blanks stripped;
// the line's end counts as a blank. False, with the message set, when the
// record is short or a value does not fit.
bool read_record(std::string_view line, std::size_t i, std::size_t line_number, LogReadResult& r) {
    LogSeries& s = r.series;
    std::string_view rest = line;
    for (int k = 1; k <= fields_per_record; ++k) {
        if (rest.empty()) {
            r.message = line_error("Data record with fewer than five fields", line_number);
            return false;
        }
        const std::size_t blank = rest.find(' ');
        const std::string_view field = rest.substr(0, blank);
        rest = blank == std::string_view::npos ? std::string_view() : ltrim_view(rest.substr(blank));
        if (k == 1) {
            s.graph_time[i] = detail::elapsed_minutes(field);
            continue;
        }
        const double value = detail::field_number(field);
        if (!std::isfinite(value)) {
            r.message = line_error("Value out of range", line_number);
            return false;
        }
        switch (k) {
        case 2: s.graph_flow[i] = value; break;
        case 3: s.graph_avg_flow[i] = value; break;
        case 4: s.graph_volume[i] = value; break;
        default: {
            const auto pressure = to_int16(value);
            if (!pressure) {
                r.message = line_error("Value out of range", line_number);
                return false;
            }
            s.graph_pressure[i] = *pressure;
        }
        }
    }
    return true;
}

// The default flow scale: centred on the final average and wide enough for
// the farther extreme. An average of 1 or less takes a whole unit of margin.
void default_flow_scale(LogSeries& s) {
    const double a = s.final_avg_flow;
    const double up = s.max_flow - a;
    const double down = a - s.min_flow;
    if (down < up) {
        if (a <= 1) {
            s.flow_scale_min = std::floor(a - up);
            s.flow_scale_max = std::floor(s.max_flow + 1);
        } else {
            s.flow_scale_min = std::floor(a - up + 0.5);
            s.flow_scale_max = std::floor(s.max_flow + 0.5);
        }
    } else {
        if (a <= 1) {
            s.flow_scale_max = std::floor(a + down + 1);
            s.flow_scale_min = std::floor(s.min_flow);
        } else {
            s.flow_scale_max = std::floor(a + down + 0.5);
            s.flow_scale_min = std::floor(s.min_flow + 0.5);
        }
    }
}

void read_records(std::string_view text, LogReadResult& r) {
    LogSeries& s = r.series;
    s.graph_valid = false;
    s.min_flow = 100;
    s.max_flow = 0;
    s.final_avg_flow = 0;
    s.max_volume = 0;
    bool first_record = true, saw_model = false, saw_elapsed = false, saw_time = false;
    std::size_t i = 0, line_number = 0, pos = 0;
    std::string_view raw;
    while (next_line(text, pos, raw)) {
        ++line_number;
        if (raw.find(end_of_data) != std::string_view::npos || raw.find(BELL) != std::string_view::npos) break;
        const std::string_view line = trim_view(raw);
        if (line.starts_with(model_mark)) saw_model = true;
        if (line.starts_with(single_rate_mark)) r.single_rate_test = true;
        if (line.starts_with(elapsed_mark)) saw_elapsed = true;
        if (line.starts_with(time_mark)) saw_time = true;
        if (!(saw_model && saw_elapsed && saw_time && r.single_rate_test) || !record_shaped(line)) continue;
        // Every line read here was counted by the first pass, so i stays
        // within the series; the test only keeps a broken count harmless.
        if (i >= s.graph_time.size()) break;
        s.graph_valid = true;
        if (!read_record(line, i, line_number, r)) return;
        if (s.graph_volume[i] > s.max_volume) s.max_volume = s.graph_volume[i];
        if (s.graph_flow[i] > s.max_flow) s.max_flow = s.graph_flow[i];
        if (first_record) {
            s.min_flow = s.graph_flow[i];
            first_record = false;
        } else if (s.graph_flow[i] < s.min_flow) {
            s.min_flow = s.graph_flow[i];
        }
        ++i;
    }

    const std::size_t n = static_cast<std::size_t>(s.graph_last_index);
    s.final_avg_flow = s.graph_avg_flow[n];
    s.max_volume = std::floor(s.max_volume);
    // The average of the last record but one, to a whole ml/h.
    s.base_rate = std::floor(s.graph_avg_flow[n - 1] + 0.5);
    default_flow_scale(s);
    const auto whole = to_int16(s.final_avg_flow);
    if (!whole) {
        r.message = error_box("Final average flow out of range; graphing cancelled");
        return;
    }
    s.avg_flow_whole = *whole;
    if (!s.graph_valid) r.message = error_box("Invalid Log file; possibly wrong format");
}

}  // namespace

namespace detail {

double minutes_through_decimal_text(double minutes) {
    std::string text = general_number(minutes);
    const std::size_t point = text.find('.');
    if (point != std::string::npos && text.size() > point + 3) text.resize(point + 3);
    return leading_number(text);
}

double elapsed_minutes(std::string_view field) {
    // Hours from characters 1 and 2, minutes from 4 and 5, seconds from 7
    // and 8. When all six are digits the result is exact in whole seconds:
    // the fraction of a minute, s/60, has the decimals 000, 333 or 666 behind
    // its second one, so the text at 15 digits never rounds into the two
    // kept decimals, and hundredths / 100 is the double that text reads as.
    const auto d = [&](std::size_t p) { return field[p] - '0'; };
    if (field.size() >= 8 && is_digit(field[0]) && is_digit(field[1]) && is_digit(field[3]) &&
        is_digit(field[4]) && is_digit(field[6]) && is_digit(field[7])) {
        const long seconds = (d(0) * 10 + d(1)) * 3600L + (d(3) * 10 + d(4)) * 60L + d(6) * 10 + d(7);
        const long hundredths = seconds / 60 * 100 + seconds % 60 * 5 / 3;
        return static_cast<double>(hundredths) / 100.0;
    }
    const double minutes =
        leading_number(mid(field, 1, 2)) * 60 + leading_number(mid(field, 4, 2)) + leading_number(mid(field, 7, 2)) / 60;
    return minutes_through_decimal_text(minutes);
}

double field_number(std::string_view field) {
    if (plain_decimal(field)) {
        const char* first = field.data() + (field.front() == '+' ? 1 : 0);
        const char* last = field.data() + field.size();
        double value = 0;
        const auto [end, ec] = std::from_chars(first, last, value);
        if (ec == std::errc() && end == last) return value;
    }
    return leading_number(field);
}

}  // namespace detail

LogReadResult read_log(std::string_view text, bool single_rate_test) {
    LogReadResult r;
    r.single_rate_test = single_rate_test;
    count_records(text, r);
    if (r.graph_file_ok && r.series.graph_valid) read_records(text, r);
    return r;
}

LogSeries& graph_series() {
    static LogSeries series;
    return series;
}

LogReadResult read_log_file(const std::string& path, bool single_rate_test) {
    const std::optional<std::string> text = read_text_file(path, log_size_limit);
    if (!text) {
        LogReadResult r;
        r.single_rate_test = single_rate_test;
        r.message = open_error();
        return r;
    }
    return read_log(*text, single_rate_test);
}

}  // namespace kyt
