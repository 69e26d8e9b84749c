#include "reports/csv_convert.h"

#include <algorithm>
#include <vector>

#include "common/text.h"
#include "common/file_text.h"
#include "reports/report_file.h"

namespace kyt {

namespace {

// Shown in the success branch of the console only behind a flag that is
// always set, so never told; kept apart from the message that is.
[[maybe_unused]] constexpr std::string_view never_told =
    "Unsuccessful conversion, please try again or check the user manual for further assistance";

void write_line(std::string& out, std::string_view text) {
    out += text;
    out += CRLF;
}

}  // namespace

std::string time_colons_to_commas(std::string_view line) {
    std::string out(line);
    bool in_blanks = false;
    for (char& c : out) {
        if (c == ':') {
            c = ',';
        } else if (c == ' ') {
            if (!in_blanks) c = ',';
            in_blanks = true;
        } else {
            in_blanks = false;
        }
    }
    return out;
}

CsvText convert_log_text(std::string_view log_text) {
    const std::vector<std::string> lines = split_lines(log_text);
    const std::size_t n = lines.size();
    std::size_t i = 0;

    std::string header;
    bool headed = false;
    while (i < n && !headed) {
        headed = contains(lines[i], "(mmHg)");
        header += lines[i++];
        header += CRLF;
    }
    CsvText r;
    if (!headed) return r;

    // The last 110 characters are the two heading lines and their blank
    // neighbours of the log's own layout.
    header.resize(header.size() > 110 ? header.size() - 110 : 0);
    header += ",";
    header += CRLF;
    write_line(r.csv, header);
    write_line(r.csv, ",,Elasped,,Flow,Avg Flow,Volume,B.Pres");
    write_line(r.csv, ",,Time,,(ml/h),(ml/h),(ml),(mmHg)");

    while (i < n && !r.complete) {
        const std::string& l = lines[i++];
        if (contains(l, "END OF DATA"))
            r.complete = true;
        else if (contains(l, std::string_view(&FF, 1)))
            i = std::min(n, i + 5);
        else
            write_line(r.csv, time_colons_to_commas(l));
    }
    if (!r.complete) return r;

    write_line(r.csv, CRLF);
    for (; i < n; ++i) write_line(r.csv, lines[i]);
    return r;
}

BoxMessage csv_message(CsvOutcome outcome) {
    switch (outcome) {
    case CsvOutcome::converted:
        return {"Successful conversion", "SUCCESS", box_exclamation};
    case CsvOutcome::bad_extension:
        return {R"(Invalid Extension - Please select a valid log file with a ".log" extension)", "ERROR",
                box_critical};
    case CsvOutcome::cannot_open:
        return {"Unable to open file", "ERROR", box_critical};
    case CsvOutcome::no_end_mark:
        break;
    }
    return {"Unsuccessful conversion, please try again or check the help screens for further assistance", "ERROR",
            box_critical};
}

CsvResult convert_log_to_csv(const std::string& file_name) {
    const std::string name = trim(file_name);
    CsvResult r;
    if (!ends_with(name, ".log")) {
        r.outcome = CsvOutcome::bad_extension;
        return r;
    }
    r.target = name.substr(0, name.size() - 4) + ".CSV";
    const auto log_text = read_text_file(name, report_size_limit);
    if (!log_text) {
        r.outcome = CsvOutcome::cannot_open;
        return r;
    }
    const CsvText converted = convert_log_text(*log_text);
    // A text without the log's column headings gives nothing to write, and
    // a spreadsheet file made before stays as it was.
    if (converted.csv.empty()) {
        r.outcome = CsvOutcome::no_end_mark;
        return r;
    }
    if (!write_text_file(r.target, converted.csv))
        r.outcome = CsvOutcome::cannot_open;
    else
        r.outcome = converted.complete ? CsvOutcome::converted : CsvOutcome::no_end_mark;
    return r;
}

}  // namespace kyt
