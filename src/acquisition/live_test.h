#pragma once
// What the live test screens make of the analyser's replies, without a
// widget: the fields of a poll reply, the texts of the labels, the rules
// that keep the graph's y axis around the values, and the gathering of the
// summary the analyser sends at the end of a test.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "acquisition/download_choice.h"

namespace kyt {

// The first `count` fields of a reply as the screens read them: a field runs
// up to and including its comma, and the rest loses its leading blanks; with
// no comma left the field is the rest, trimmed, and it stands again for every
// later field.
std::vector<std::string> reply_fields(std::string_view reply, int count);

// A field's leading number as a 16-bit count (0 when it starts with none;
// held to the 16-bit range).
std::int16_t field_count(std::string_view field);

// One poll of a single-rate test.
struct RtReading {
    char mode = ' ';  // flow range: "A" low, "B" high, "C" pulsatile
    std::int16_t hours = 0, minutes = 0, seconds = 0;
    double flow = 0, avg_flow = 0, volume = 0, pressure = 0;
};
RtReading process_RTData(std::string_view reply);

// One poll of an occlusion test. The kPa value of the graph is PSI times
// 7.51; the kPa label is mmHg over 7.51. The two differ on purpose.
struct OtReading {
    std::string mode;
    std::int16_t minutes = 0, seconds = 0;
    double psi = 0, mmhg = 0, kpa = 0;
};
inline constexpr double kpa_factor = 7.51;
OtReading process_OTData(std::string_view reply);

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
    double value(const OtReading& r) const;
    AxisChange sample(const OtReading& r);

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
