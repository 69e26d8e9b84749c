#pragma once
// The seconds-since-midnight timer, and a clock for tests that never really
// waits: each reading moves it on by a fixed step.

namespace kyt {

class Clock {
public:
    virtual ~Clock() = default;
    // Seconds since local midnight, single precision as the timer gives it.
    virtual float timer() = 0;
};

class SystemClock final : public Clock {
public:
    float timer() override;
};

class SteppingClock final : public Clock {
public:
    explicit SteppingClock(float start = 36000.0f, float step = 0.25f) : now_(start), step_(step) {}
    float timer() override {
        const float t = now_;
        now_ += step_;
        ++readings_;
        return t;
    }
    void set(float now) { now_ = now; }
    long readings() const { return readings_; }

private:
    float now_;
    float step_;
    long readings_ = 0;
};

// Spins until the timer has moved on by the given seconds. It serves no event
// and has no handling of midnight: a wait whose end lies past 86400 never
// ends, as the console's callers accept.
void wait_seconds(Clock& clock, float seconds);

}  // namespace kyt
