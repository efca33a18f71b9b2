#pragma once

#include <chrono>

namespace Marlox {

/// What the machine tells.
struct Platform {
    /// Seconds since some moment in the past; never goes back.
    static double GetUpTime()
    {
        using Clock = std::chrono::steady_clock;
        return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
    }
};

} // namespace Marlox
