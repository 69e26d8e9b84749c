#pragma once
// The seconds-since-midnight timer.

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

// Spins until the timer has moved on by the given seconds. It serves no event
// and has no handling of midnight: a wait whose end lies past 86400 never
// ends, as the console's callers accept.
void wait_seconds(Clock& clock, float seconds);

}  // namespace kyt
