#pragma once
// A data log as the analyser sends it, in the console's own row layout with a
// page break every 51 rows, closed by "END OF DATA" and the character 7; of
// about the size asked for.

#include <cstdio>
#include <string>

namespace bench {

inline std::string data_log(std::size_t size) {
    std::string text = "\r\n\r\n                                 MAROVANT 4500-K\r\n\r\n         SINGLE RATE TEST\r\n\r\n"
                       "         Elapsed   Flow  Avg Flow  Volume  B.Pres\r\n"
                       "           Time    (ml/h)  (ml/h)    (ml)  (mmHg)\r\n";
    text.reserve(size + 256);
    for (int row = 0; text.size() < size; ++row) {
        if (row > 0 && row % 51 == 0) {
            char mark[96];
            std::snprintf(mark, sizeof mark, "\f\r\n\r\n%67sp. %02d\r\n\r\n", "", row / 51 + 1);
            text += mark;
        }
        char line[96];
        std::snprintf(line, sizeof line, "         %02d:%02d:%02d  %5.2f   %5.2f    %5.3f     %d\r\n", row / 3600 % 100,
                      row / 60 % 60, row % 60, 95 + row % 10 * 0.5, 99.5 + row % 7 * 0.1, (row % 3600) * 0.0278,
                      row % 20);
        text += line;
    }
    return text + "\r\n         END OF DATA\a";
}

}  // namespace bench
