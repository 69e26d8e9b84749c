#pragma once
// A clock for tests that never really waits: each reading moves it on by a
// fixed step.

#include "common/clock.h"

namespace kyt {

class SteppingClock final : public Clock {
public:
    explicit SteppingClock(float start = 36000.0f, float step = 0.25f) : now_(start), step_(step) {}
    float timer() override {
        const float t = now_;
        now_ += step_;
        ++readings_;
        return t;
    }
    long readings() const { return readings_; }

private:
    float now_;
    float step_;
    long readings_ = 0;
};

}  // namespace kyt
