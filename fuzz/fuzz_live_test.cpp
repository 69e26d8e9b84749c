// What a live test takes from the line, block by block: each block as a
// poll reply (split into readings, the graph's axis rules, the log row
// written of it) and as a piece of the summary sent at the end of the test,
// finished into the summary file when its character 7 comes. The first byte
// chooses the pressure unit, whether a header was entered and the length of
// the header's set rate; the first byte of each block after that says how
// many bytes the block holds, so the fuzzer also chooses where the line
// splits the text.
//
// Checked: the gathered summary never holds the characters 7 and 5, ends
// exactly when a block brings a 7, and its file ends in CR LF; every log row
// is one line.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "acquisition/download_choice.h"
#include "acquisition/live_test.h"
#include "acquisition/logformat.h"
#include "common/report_rec.h"
#include "common/text.h"
#include "link/protocol.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

void one_line(const std::string& row) {
    check(row.ends_with("\r\n"));
    check(row.find_first_of("\r\n") == row.size() - 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::uint8_t flags = data[0];
    std::string_view in(reinterpret_cast<const char*>(data) + 1, size - 1);

    constexpr kyt::OcclusionUnit units[] = {kyt::OcclusionUnit::psi, kyt::OcclusionUnit::mmhg,
                                            kyt::OcclusionUnit::kpa};
    const bool header_entered = flags & 4;
    kyt::ReportRec rec;
    rec.set_rates = std::string(in.substr(0, std::min<std::size_t>(flags >> 4, in.size())));
    rec.technician = "fuzz";
    rec.pump_type = header_entered ? "Volumetric" : "";
    in.remove_prefix(rec.set_rates.size());

    kyt::FlowAxis flow_axis;
    kyt::FlowAxis::initial(rec.set_rates);
    kyt::PressureAxis pressure_axis(units[flags % 3]);
    pressure_axis.initial();
    kyt::SummaryGather gather;
    bool first_buffer = true;

    std::size_t p = 0;
    while (p < in.size()) {
        const std::size_t wanted = static_cast<unsigned char>(in[p++]) % 64;
        const std::string block(in.substr(p, std::min(wanted, in.size() - p)));
        p += block.size();

        const kyt::PollReply reply = kyt::take_poll_reply(block);
        if (reply.is_data) {
            if (const auto rt = kyt::process_rt_data(reply.text); rt.ok()) {
                const kyt::RTData& r = rt.data;
                flow_axis.sample(r.flow, r.avg_flow);
                one_line(kyt::single_rate_row({r.hours, r.minutes, r.seconds, r.flow, r.avg_flow, r.volume, r.pressure}));
            }
            if (const auto ot = kyt::process_ot_data(reply.text); ot.ok()) {
                pressure_axis.sample(ot.data);
                one_line(kyt::occlusion_row({ot.data.minutes, ot.data.seconds, ot.data.psi, ot.data.mmhg}));
            }
        }

        const kyt::SummaryGather::Tick t = gather.take(block, first_buffer);
        check(!first_buffer);
        check(gather.text().find_first_of("\x07\x05") == std::string::npos);
        check(t.ended == (block.find(kyt::BELL) != std::string::npos));
        check(t.reply_error == (block.size() == 2));
        if (t.ended) {
            const std::string file = kyt::summary_file_text(gather.text(), rec, header_entered, flags & 8 ? '1' : '3');
            check(file.ends_with("\r\n"));
            first_buffer = true;
        }
    }
    return 0;
}
