// The simulated analyser's command handling, over any bytes: the commands
// are the input cut at CR (or LF, as the simulator's reader takes them), and
// the byte after each line end moves the clock on by that many tenths of a
// second. The first byte says which channels hold a pump.
//
// Checked, as the console meets the replies: a poll reply reads as data of
// its test; a text stream names itself as a log or a summary, and the line
// ends the simulator damages are repaired by the console's own repair; the
// pieces a reply is cut into make up the reply.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "analyser.h"
#include "faults.h"
#include "link/protocol.h"
#include "reports/capture.h"
#include "reports/report_file.h"

namespace {

void check(bool ok) {
    if (!ok) std::abort();
}

const sim::Clock::time_point start{};
constexpr std::time_t wall_start = 1'800'000'000;

// Making an analyser runs each channel's half-hour test, so there is one
// ready-made analyser for each set of channels, and each input works on a copy.
const sim::Analyser& prototype(unsigned channels) {
    static std::unique_ptr<sim::Analyser> made[16];
    std::unique_ptr<sim::Analyser>& a = made[channels % 16];
    if (!a) {
        sim::Options o;
        for (int i = 0; i < sim::channel_count; ++i) o.pump[static_cast<std::size_t>(i)] = channels & (1u << i);
        a = std::make_unique<sim::Analyser>(o, start, wall_start);
    }
    return *a;
}

void check_reply(std::string_view command, const sim::Reply& r, std::mt19937_64& random) {
    if (r.kind == sim::Reply::Kind::none) return;
    check(!r.text.empty());
    if (r.kind == sim::Reply::Kind::line && r.text.size() > 2) {
        check(command.starts_with("GR") && command.size() == 3);
        const kyt::PollReply reply = kyt::take_poll_reply(r.text);
        check(reply.is_data);
        check(kyt::process_rt_data(reply.text).ok() || kyt::process_ot_data(reply.text).ok());
    }
    if (r.kind == sim::Reply::Kind::stream && r.bell) {
        check(kyt::is_report_text(r.text));
        std::string damaged = sim::damage_line_ends(r.text, random);
        std::string whole = r.text;
        kyt::process_buffer(damaged);
        kyt::process_buffer(whole);
        check(damaged == whole);
    }
    std::string joined;
    for (const std::string& piece : sim::split_into_pieces(r.text, random)) joined += piece;
    check(joined == r.text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    sim::Analyser analyser = prototype(data[0]);
    std::mt19937_64 random(data[0]);
    const std::string_view in(reinterpret_cast<const char*>(data) + 1, size - 1);

    // A test is stepped in tenths of a second; the clock stops after ten
    // minutes so that no input costs more than that.
    std::chrono::milliseconds elapsed{0};
    constexpr std::chrono::milliseconds longest{600'000};
    std::size_t pos = 0;
    while (pos < in.size()) {
        std::size_t end = in.find_first_of("\r\n", pos);
        if (end == std::string_view::npos) end = in.size();
        const std::string_view command = in.substr(pos, end - pos);
        pos = end + 1;
        if (pos < in.size()) {
            elapsed = std::min(longest, elapsed + std::chrono::milliseconds(100 * static_cast<unsigned char>(in[pos])));
            ++pos;
        }
        if (command.empty()) continue;
        const sim::Reply r = analyser.handle(command, start + elapsed, wall_start + elapsed.count() / 1000);
        check_reply(command, r, random);
    }
    return 0;
}
