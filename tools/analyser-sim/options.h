#pragma once
// The command line of the simulated analyser.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim {

inline constexpr int channel_count = 4;

inline int channel_index(char channel) { return channel >= 'A' && channel <= 'D' ? channel - 'A' : -1; }

struct Options {
    std::string link;                                  // --link PATH
    std::array<bool, channel_count> pump{true, true, true, true};  // --channels
    std::array<double, channel_count> rate{100, 100, 100, 100};    // --rate, ml/h
    double speed = 1;                                  // simulated seconds per real second
    std::uint64_t seed = 1;
    bool split = false;                                // replies reach the line in pieces
    bool damage_line_ends = false;                     // text streams carry damaged line ends
    std::optional<long> silent_after;                  // commands answered before silence
    std::optional<long> hangup_after;                  // commands answered before the hang-up
};

// The options, or the reason they are refused (usage text for --help).
struct ParsedOptions {
    Options options;
    std::string error;
    bool help = false;
};

ParsedOptions parse_options(const std::vector<std::string>& args);

extern const char* const usage_text;

}  // namespace sim
