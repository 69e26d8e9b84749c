#pragma once

#include "common/clock.h"

namespace kyt {

// A clock that never really waits: each reading moves it on by a fixed step.
class SteppingClock final : public Clock {
public:
    explicit SteppingClock(float start = 36000.0f, float step = 0.25f) : now_(start), step_(step) {}
    float timer() override {
        ++readings_;
        const float t = now_;
        now_ += step_;
        return t;
    }
    long readings() const { return readings_; }

private:
    float now_;
    float step_;
    long readings_ = 0;
};

}  // namespace kyt
