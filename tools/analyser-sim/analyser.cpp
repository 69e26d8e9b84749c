#include "analyser.h"

#include <cmath>

#include "common/numbers.h"
#include "common/text.h"
#include "link/protocol.h"
#include "reports.h"

namespace sim {

namespace {

std::uint64_t mix(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

Reply short_line(char code) { return {Reply::Kind::line, std::string{code, kyt::CR}, false}; }
const Reply nothing{};

std::optional<TestKind> test_kind(std::string_view number) {
    if (number == std::to_string(kyt::test_single_rate)) return TestKind::single_rate;
    if (number == std::to_string(kyt::test_occlusion)) return TestKind::occlusion;
    return std::nullopt;
}

std::string test_pattern() {
    return std::string(kyt::test_pattern_first_line) + std::string(kyt::CRLF) +
           std::string(kyt::test_pattern_second_line) + std::string(kyt::CRLF);
}

}  // namespace

std::string poll_reply(const TestModel& test) {
    const Sample& s = test.now();
    const std::string sep = ", ";
    std::string r;
    if (test.kind() == TestKind::single_rate) {
        r = std::string(1, flow_range(test.pump().rate)) + sep + std::to_string(s.elapsed / 3600) + sep +
            std::to_string(s.elapsed / 60 % 60) + sep + std::to_string(s.elapsed % 60) + sep +
            kyt::format_picture(s.flow, "0.00") + sep + kyt::format_picture(s.avg_flow, "0.00") + sep +
            kyt::format_picture(s.volume, "0.000") + sep + kyt::general_number(s.pressure);
    } else {
        r = "O" + sep + std::to_string(s.elapsed / 60) + sep + std::to_string(s.elapsed % 60) + sep +
            kyt::format_picture(s.psi, "0.00") + sep + kyt::general_number(std::round(s.mmhg));
    }
    return r + std::string(kyt::CRLF);
}

Analyser::Analyser(const Options& options, Clock::time_point now, std::time_t wall_now) : options_(options) {
    for (int i = 0; i < channel_count; ++i) {
        Channel& c = channels_[i];
        c.pump = options.pump[i];
        if (!c.pump) continue;
        c.traits = make_pump(options.rate[i], mix(options.seed ^ mix(static_cast<std::uint64_t>(i) + 1)));
        TestModel recorded(TestKind::single_rate, c.traits, test_seed(i, c.tests++));
        recorded.advance_to(recorded_test_seconds);
        const auto recorded_time = static_cast<std::time_t>(recorded_test_seconds);
        c.test = Test{std::move(recorded), now, wall_now - recorded_time, recorded_test_seconds};
    }
}

std::uint64_t Analyser::test_seed(int channel, int number) const {
    return mix(mix(options_.seed) ^ mix(static_cast<std::uint64_t>(channel) << 32 | static_cast<std::uint64_t>(number)));
}

void Analyser::start(int channel, TestKind kind, Clock::time_point now, std::time_t wall_now) {
    Channel& c = channels_[channel];
    c.test = Test{TestModel(kind, c.traits, test_seed(channel, c.tests++)), now, wall_now, std::nullopt};
}

double Analyser::elapsed(const Test& t, Clock::time_point now) const {
    return t.stopped ? *t.stopped : std::chrono::duration<double>(now - t.started).count() * options_.speed;
}

TestModel& Analyser::current(Channel& c, Clock::time_point now) {
    c.test->model.advance_to(elapsed(*c.test, now));
    return c.test->model;
}

Reply Analyser::handle(std::string_view command, Clock::time_point now, std::time_t wall_now) {
    const Reply unknown = short_line('?');
    if (command.size() < 3) return unknown;
    const std::string_view code = command.substr(0, 2);
    const char letter = command[2];
    const int ch = channel_index(letter);
    const std::string_view rest = command.substr(3);
    if (ch < 0) return unknown;

    const bool known = (code == "ST" && rest.empty()) ||
                       (code == "DL" && rest.size() == 1 && rest[0] >= kyt::download_summary &&
                        rest[0] <= kyt::download_test_pattern) ||
                       (code == "PR" && rest.size() == 1 && rest[0] == kyt::download_summary) ||
                       (code == "RT" && test_kind(rest)) || (code == "GR" && (rest.empty() || test_kind(rest)));
    if (!known) return unknown;

    // The test pattern proves the port and the cable, whatever the channel.
    if (code == "DL" && rest[0] == kyt::download_test_pattern) return {Reply::Kind::stream, test_pattern(), false};

    Channel& c = channels_[ch];
    if (!c.pump) return short_line('n');
    const bool running = c.test && !c.test->stopped;

    if (code == "RT") {
        start(ch, *test_kind(rest), now, wall_now);
    } else if (code == "GR" && !rest.empty()) {
        if (!running) start(ch, *test_kind(rest), now, wall_now);
    } else if (code == "GR") {
        if (!running) return short_line('e');
        return {Reply::Kind::line, poll_reply(current(c, now)), false};
    } else if (code == "ST") {
        if (running) c.test->stopped = elapsed(*c.test, now);
    } else if (code == "DL") {
        if (!c.test) return short_line('e');
        const TestModel& model = current(c, now);
        const std::string text = rest[0] == kyt::download_summary
                                     ? summary_text(letter, model, c.test->started_wall)
                                     : data_log_text(letter, model, c.test->started_wall);
        return {Reply::Kind::stream, text, true};
    }
    return nothing;
}

}  // namespace sim
