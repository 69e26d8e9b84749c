#include "pump_model.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sim {

namespace {

constexpr double dead_time = 1.5;         // s before the first stroke moves fluid
constexpr double ramp_time = 12.0;        // s, time constant of the start-up
constexpr double stroke_volume = 0.08;    // ml moved by one stroke
constexpr double pulse_depth = 0.3;       // relative swing of the flow over a stroke
constexpr double wander_time = 4.0;       // s, how long a flow wander lasts
constexpr double wander_size = 0.015;     // relative size of the wander
constexpr double pressure_noise = 0.15;   // mmHg
constexpr double line_compliance = 0.05;  // ml the closed line takes up per PSI
constexpr double psi_noise = 0.03;

}  // namespace

PumpTraits make_pump(double rate, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    PumpTraits p;
    p.rate = rate;
    p.bias = std::uniform_real_distribution<double>(-0.02, 0.02)(random);
    p.stall_psi = std::uniform_real_distribution<double>(12.0, 18.0)(random);
    return p;
}

TestModel::TestModel(TestKind kind, const PumpTraits& pump, std::uint64_t seed)
    : kind_(kind), pump_(pump), random_(seed) {}

int TestModel::log_interval() const { return kind_ == TestKind::single_rate ? 30 : 5; }

void TestModel::advance_to(double elapsed) {
    const auto target = static_cast<std::int64_t>(std::floor(elapsed / step_seconds + 1e-9));
    while (steps_ < target) step();
}

void TestModel::step() {
    ++steps_;
    const double dt = step_seconds;
    const double t = static_cast<double>(steps_) * dt;
    const double hours = t / 3600.0;

    const double ramp = t <= dead_time ? 0.0 : 1.0 - std::exp(-(t - dead_time) / ramp_time);
    const double period = std::clamp(stroke_volume * 3600.0 / pump_.rate, 1.0, 120.0);
    phase_ = std::fmod(phase_ + 2 * std::numbers::pi * dt / period, 2 * std::numbers::pi);
    wander_ += -wander_ * dt / wander_time + wander_size * std::sqrt(2 * dt / wander_time) * normal_(random_);
    const double pulse = std::max(0.0, 1.0 + pulse_depth * std::sin(phase_));
    const double pumped = std::max(0.0, pump_.rate * (1 + pump_.bias) * ramp * pulse * (1 + wander_));

    now_.elapsed = static_cast<int>(std::floor(t + 1e-9));
    if (kind_ == TestKind::single_rate) {
        volume_ += pumped * dt / 3600.0;
        const double base = 1.5 + pump_.rate / 150.0;
        now_.flow = pumped;
        // The analyser reads the back pressure to a tenth of a mmHg.
        const double pressure = ramp * base * (1 + 0.25 * std::sin(phase_)) + pressure_noise * normal_(random_);
        now_.pressure = std::round(pressure * 10) / 10;
    } else {
        // The closed line fills: what the pump moves raises the pressure, and
        // the rising pressure holds the pump back.
        const double delivered = pumped * std::max(0.0, 1.0 - line_psi_ / pump_.stall_psi);
        volume_ += delivered * dt / 3600.0;
        line_psi_ += delivered * dt / 3600.0 / line_compliance;
        now_.flow = delivered;
        now_.psi = std::max(0.0, line_psi_ + psi_noise * normal_(random_));
        now_.mmhg = now_.psi * mmhg_per_psi;
    }
    now_.volume = volume_;
    now_.avg_flow = volume_ / hours;
    if (steps_ % (log_interval() * 10) == 0) log_.push_back(now_);
}

}  // namespace sim
