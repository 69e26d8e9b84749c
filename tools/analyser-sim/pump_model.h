#pragma once
// The pump on one channel and what the analyser measures of it during a test.
//
// Single-rate test: the pump starts after a short dead time and ramps up to
// its delivered rate (the set rate off by the pump's own small error); the
// flow pulses with each stroke of the mechanism and carries a slow random
// wander; the volume is the integral of that flow, the average flow the
// volume over the elapsed time, and the back pressure follows the flow with a
// little noise of its own.
//
// Occlusion test: the pump pushes into a closed line whose compliance fills,
// so the pressure builds and the pump slows as it nears its stall pressure:
// the pressure rises to a plateau.
//
// The model is stepped in fixed steps of simulated time from a seeded
// generator, so a test reads the same at every speed and on every run.

#include <cstdint>
#include <random>
#include <vector>

namespace sim {

enum class TestKind { single_rate = 1, occlusion = 4 };

struct PumpTraits {
    double rate = 100;        // set rate, ml/h
    double bias = 0;          // relative delivery error of this pump
    double stall_psi = 15;    // pressure at which the pump can push no more
};

// Draws a pump's own error and stall pressure from the seed.
PumpTraits make_pump(double rate, std::uint64_t seed);

// What the analyser measures at one moment of a test.
struct Sample {
    int elapsed = 0;        // whole seconds since the start
    double flow = 0;        // ml/h
    double avg_flow = 0;    // ml/h
    double volume = 0;      // ml
    double pressure = 0;    // back pressure, mmHg, to a tenth
    double psi = 0;         // occlusion pressure
    double mmhg = 0;        // occlusion pressure
};

inline constexpr double mmhg_per_psi = 51.7149;

class TestModel {
public:
    static constexpr double step_seconds = 0.1;

    TestModel(TestKind kind, const PumpTraits& pump, std::uint64_t seed);

    TestKind kind() const { return kind_; }
    const PumpTraits& pump() const { return pump_; }

    // Steps the test on to the simulated time given, in seconds.
    void advance_to(double elapsed);

    // The newest measurement.
    const Sample& now() const { return now_; }

    // One measurement per logging interval, from the first interval's end.
    const std::vector<Sample>& log() const { return log_; }
    int log_interval() const;  // seconds

private:
    void step();

    TestKind kind_;
    PumpTraits pump_;
    std::mt19937_64 random_;
    std::normal_distribution<double> normal_{0.0, 1.0};

    std::int64_t steps_ = 0;
    double phase_ = 0;        // stroke phase, radians
    double wander_ = 0;       // slow relative flow wander
    double volume_ = 0;       // ml delivered
    double line_psi_ = 0;     // true pressure in the closed line
    Sample now_;
    std::vector<Sample> log_;
};

}  // namespace sim
