#pragma once
// What the live test screens make of the analyser's polls, without a
// widget: the texts of the labels, the rules that keep the graph's y axis
// around the values, and the gathering of the summary the analyser sends at
// the end of a test. The polls themselves are read by the protocol.

#include <optional>
#include <string>

#include "acquisition/download_choice.h"
#include "link/protocol.h"

namespace kyt {

// The caption of the single-rate data frame by flow range.
std::string flow_range_caption(char mode);
// "hh:mm:ss" of a count of seconds, each part at least two digits.
std::string seconds_to_hhmmss(long seconds);

// A change of the graph's y axis: each bound that moves.
struct AxisChange {
    std::optional<double> min, max;
    bool operator==(const AxisChange&) const = default;
};

// The y axis of the single-rate graph. Until the first sample it is set
// from the header's set rate (100 when none): half of it to one and a half
// times it. The first sample sets it around the average flow; later ones
// widen it when the flow leaves the lowest or highest seen.
class FlowAxis {
public:
    static AxisChange initial(const std::string& set_rate);
    AxisChange sample(double flow, double avg_flow);

private:
    bool first_ = true;
    double base_ = 10.0;
    double min_flow_ = 0, max_flow_ = 0;
};

// The y axis of the occlusion graph in the unit chosen: from 0 to a start
// maximum by the unit, then around the first value, widened by new lows and
// highs of that unit.
class PressureAxis {
public:
    explicit PressureAxis(OcclusionUnit unit) : unit_(unit) {}
    // The axis title and bounds before the first sample.
    std::string title() const;
    AxisChange initial() const;
    // The value graphed for a reading, in the chosen unit.
    double value(const OTData& r) const;
    AxisChange sample(const OTData& r);

private:
    OcclusionUnit unit_;
    bool first_ = true;
    double min_ = 0, max_ = 0;
};

// Gathers the summary the analyser sends after a test, one block a tick,
// until its character 7. Blocks that carry a character 7 or 5 leave a line
// end in their place while the text is below 50001 characters, and nothing
// after that.
class SummaryGather {
public:
    struct Tick {
        bool reply_error = false;  // the block is a two-character error reply
        bool ended = false;        // the character 7 came: text() is complete
    };
    // `first_buffer` starts a new text and is cleared.
    Tick take(const std::string& block, bool& first_buffer);
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

}  // namespace kyt
