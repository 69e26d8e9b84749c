#include "common/clock.h"

#include <chrono>
#include <ctime>

namespace kyt {

float SystemClock::timer() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t t = system_clock::to_time_t(now);
    std::tm tm{};
    localtime_r(&t, &tm);
    const auto frac = duration_cast<microseconds>(now.time_since_epoch()).count() % 1000000;
    return static_cast<float>(tm.tm_hour * 3600 + tm.tm_min * 60 + tm.tm_sec + frac / 1e6);
}

void wait_seconds(Clock& clock, float seconds) {
    const float start = clock.timer();
    float now = 0;
    while (now < start + seconds) now = clock.timer();
}

}  // namespace kyt
