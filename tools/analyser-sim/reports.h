#pragma once
// The texts the analyser prints of a test: its summary and its data log, in
// the analyser's own wording, lines ended by CR LF. Both carry a header with
// underlined blanks behind the labels the console fills in; the summary holds
// the average rate and ends with the technician's signature lines; the data
// log holds one row per logging interval, page breaks with a repeated page
// head, and ends with "END OF DATA", behind which the character 7 follows.

#include <ctime>
#include <string>

#include "pump_model.h"

namespace sim {

// The flow range letter the analyser reports for a pump's set rate: "C"
// pulsatile for the slowest pumps, "A" low range, "B" high range.
char flow_range(double set_rate);

// Neither text holds the character 7: the line sends it on its own.
std::string summary_text(char channel, const TestModel& test, std::time_t started);
std::string data_log_text(char channel, const TestModel& test, std::time_t started);

// Lines per printed page of a data log, page head included.
inline constexpr int log_page_lines = 56;

}  // namespace sim
