#pragma once

#include <chrono>

namespace tarnwick {

// Seconds of a monotonic high-resolution clock with an arbitrary start; only differences mean anything.
inline double ClockSeconds() {
    using Clock = std::chrono::steady_clock;
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

} // namespace tarnwick
