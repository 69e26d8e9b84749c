#pragma once
// The analyser's side of the command protocol: four channels, each with a
// pump or none, each holding its last test, running or ended. Every command
// the console sends is answered here; what goes back is a reply and how it
// travels (a short line, or a text stream with or without the closing
// character 7).
//
// Commands (each closed by CR; channel is "A" to "D"):
//   "RT" ch "1" / "4"   start a single-rate / occlusion test
//   "GR" ch "1" / "4"   attach to the test running on the channel; with none
//                       running, the operator is taken to have started one
//   "GR" ch             the newest data of the running test, or "e" CR
//   "ST" ch             stop the test
//   "DL" ch "1" / "2"   summary / data log of the last test, closed by 7
//   "DL" ch "3"         the two lines of the test pattern (any channel)
//   "PR" ch "1"         print the summary on the analyser's printer
// A channel without a pump answers "n" CR; anything else gets "?" CR.
// Starting, attaching, stopping and printing send nothing back.

#include <array>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "options.h"
#include "pump_model.h"

namespace sim {

using Clock = std::chrono::steady_clock;

struct Reply {
    enum class Kind { none, line, stream };
    Kind kind = Kind::none;
    std::string text;
    bool bell = false;  // a stream closed by the character 7
};

class Analyser {
public:
    // Each channel with a pump starts out holding a finished single-rate
    // test of half an hour, so that a download works at once.
    Analyser(const Options& options, Clock::time_point now, std::time_t wall_now);

    Reply handle(std::string_view command, Clock::time_point now, std::time_t wall_now);

    static constexpr double recorded_test_seconds = 1800;

private:
    struct Test {
        TestModel model;
        Clock::time_point started;      // real time of the start
        std::time_t started_wall;       // date and time printed in the reports
        std::optional<double> stopped;  // simulated seconds at the stop
    };
    struct Channel {
        bool pump = false;
        PumpTraits traits;
        int tests = 0;  // tests started so far: each draws its own noise
        std::optional<Test> test;
    };

    void start(int channel, TestKind kind, Clock::time_point now, std::time_t wall_now);
    // Simulated seconds of the test at the real time given.
    double elapsed(const Test& t, Clock::time_point now) const;
    // Brings the channel's test up to now and gives it.
    TestModel& current(Channel& c, Clock::time_point now);
    std::uint64_t test_seed(int channel, int number) const;

    Options options_;
    std::array<Channel, channel_count> channels_;
};

// The poll reply of a test's newest data, closed by CR LF.
std::string poll_reply(const TestModel& test);

}  // namespace sim
