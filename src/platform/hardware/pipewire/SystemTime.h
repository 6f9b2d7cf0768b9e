#pragma once

#include <ctime>

namespace quorbel {

/// Seconds on one of the system's clocks, for deadlines on the server loop and times of cycles,
/// which cannot use the program's clock. [any]
inline double secondsOn(clockid_t clock) noexcept {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

inline double monotonicSeconds() noexcept { return secondsOn(CLOCK_MONOTONIC); }

} // namespace quorbel
