#pragma once
// A single-rate data log of the largest size the reader takes, 32,767 rows,
// laid out as the console's log writer lays it out: the head, a row per poll
// with a continuation head at each page break, the end mark and the closing
// block. A pump at about 100 ml/h polled every 10 seconds (91 hours).

#include <cmath>
#include <cstdio>
#include <string>

#include "common/numbers.h"
#include "common/text.h"

namespace bench {

inline constexpr int log_rows = 32767;
inline constexpr int poll_seconds = 10;

inline std::string log_line(std::size_t indent, std::string_view text) {
    return kyt::spaces(indent) + std::string(text) + std::string(kyt::CRLF);
}

// Flow, average flow and volume take a picture by size.
inline std::string by_size(double v) {
    if (v < 10) return kyt::format_picture(v, "0.000");
    if (v < 100) return kyt::format_picture(v, "00.00");
    if (v < 1000) return kyt::format_picture(v, "000.0");
    return kyt::format_picture(v, "0000");
}

inline std::string page_line(int page) { return log_line(67, "p. " + kyt::format_picture(page, "00")); }

inline std::string synthetic_log() {
    using kyt::replace_underlined_field;
    std::string log;
    log.reserve(static_cast<std::size_t>(log_rows) * 64);
    const std::string empty = log_line(0, "");
    log += empty + empty + page_line(1) + empty;
    log += log_line(33, "MAROVANT 4500-K") + log_line(31, "Corvane Systems Inc.") + empty;
    log += log_line(36, "DATA LOG") + empty;
    log += log_line(9, "Start of Test - Date: Nov 3 2026") + log_line(23, "- Time: 09:15") + empty;
    log += log_line(9, "Infusion Device Information:") + empty;
    log += log_line(9, "Manufacturer: " + replace_underlined_field(std::string(18, '_'), "Infusa") + " Model: " +
                           replace_underlined_field(std::string(22, '_'), "LV-200")) +
           empty;
    log += log_line(9, "Serial No.: " + std::string(20, '_') + " Control No.: " + std::string(16, '_')) + empty;
    log += log_line(9, "Department: " + std::string(20, '_') + " Location: " + std::string(19, '_')) + empty;
    log += log_line(9, "Set Rate(s): " + replace_underlined_field(std::string(13, '_'), "100") + " ml/h  " +
                           "VTBI: ____________________" + " ml") +
           empty;
    log += log_line(9, "Comment(s): " + std::string(50, '_')) + empty + empty;
    log += log_line(9, "Channel: B") + empty;
    log += log_line(9, "SINGLE RATE TEST") + empty;
    log += log_line(9, "Elapsed   Flow  Avg Flow  Volume  B.Pres");
    log += log_line(9, "  Time    (ml/h)  (ml/h)    (ml)  (mmHg)");

    int line_count = 27, page = 1;
    double volume = 0;
    char time[16];
    for (int i = 0; i < log_rows; ++i) {
        if (++line_count > 56) {
            log += log_line(0, std::string(1, kyt::FF)) + empty + page_line(++page) + empty;
            log += log_line(9, "Elasped   Flow  Avg Flow  Volume  B.Pres");
            log += log_line(9, " Time    (ml/h)  (ml/h)    (ml)   (mmHg)");
            line_count = 6;
        }
        const int seconds = i * poll_seconds;
        const double flow = 99 + 6 * std::sin(seconds / 70.0) + 2.5 * std::sin(seconds / 16.0 + 1);
        if (i > 0) volume += flow * poll_seconds / 3600;
        const double average = i == 0 ? 0 : volume * 3600 / seconds;
        const double pressure = std::round(120 + 30 * std::sin(seconds / 300.0)) / 10;
        std::snprintf(time, sizeof time, "%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
        log += log_line(9, std::string(time) + "  " + by_size(flow) + "   " + by_size(average) + "    " +
                               by_size(volume) + "     " + kyt::general_number(pressure));
    }
    log += empty + log_line(9, "END OF DATA") + empty;
    log += log_line(9, "PumpType: " + replace_underlined_field(std::string(22, '_'), "Volumetric") +
                           " Pump Tolerance(+/- %): " + replace_underlined_field(std::string(6, '_'), "5"));
    log += empty;
    log += log_line(9, "Technician:_____________________ Signature:___________________");
    return log;
}

}  // namespace bench
