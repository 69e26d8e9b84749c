// The log reader on any bytes, and the trumpet on whatever it accepts. The
// first byte chooses whether the text stands alone or behind the head of a
// single-rate log, so that the rows are reached often.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "graph/log_reader.h"
#include "trumpet/compute.h"
#include "trumpet/trumpet_settings.h"

namespace {

const std::string_view single_rate_head =
    "                                 MAROVANT 4500-K\r\n"
    "         SINGLE RATE TEST\r\n\r\n"
    "         Elapsed   Flow  Avg Flow  Volume  B.Pres\r\n"
    "           Time    (ml/h)  (ml/h)    (ml)  (mmHg)\r\n";

void check(bool ok) {
    if (!ok) __builtin_trap();
}

void trumpet(const kyt::LogSeries& series) {
    const double L = series.graph_time[series.graph_last_index];
    const kyt::TrumpSetLoad load = kyt::trumpset_load(L);
    const kyt::StartChoice all = kyt::choose_length(L, kyt::all_entry);
    kyt::TrumpetComputation c;
    const kyt::TrumpetResult at60 = c.run(series, {60, load.choice.trumpet_start_time, load.choice.trumpet_end_time});
    const kyt::TrumpetResult at30 = c.run(series, {30, all.trumpet_start_time, all.trumpet_end_time});
    for (const kyt::TrumpetResult* r : {&at60, &at30}) {
        check(r->trumpet_point_count >= 0);
        if (r->ok()) kyt::trumpet_summary_texts(*r, series.base_rate, 0, all.trumpet_end_time);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view body(reinterpret_cast<const char*>(data) + 1, size - 1);
    const bool with_head = data[0] & 1;
    const bool single_rate_seen = data[0] & 2;
    const std::string text = with_head ? std::string(single_rate_head) + std::string(body) : std::string(body);

    const kyt::LogReadResult r = kyt::read_log(text, single_rate_seen);
    if (!r.accepted()) return 0;
    const kyt::LogSeries& s = r.series;
    const auto records = static_cast<std::size_t>(s.graph_last_index) + 1;
    check(s.graph_valid && s.graph_last_index >= 3);
    check(s.graph_time.size() == records && s.graph_flow.size() == records && s.graph_avg_flow.size() == records &&
          s.graph_volume.size() == records && s.graph_pressure.size() == records);
    trumpet(s);
    return 0;
}
