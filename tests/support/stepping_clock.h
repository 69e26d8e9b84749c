#pragma once

#include "common/clock.h"

namespace kyt {

// A clock that never really waits: each reading moves it on by a quarter second.
class SteppingClock final : public Clock {
public:
    float timer() override {
        ++readings_;
        return (now_ += 0.25f) - 0.25f;
    }
    long readings() const { return readings_; }

private:
    float now_ = 36000.0f;
    long readings_ = 0;
};

}  // namespace kyt
