#pragma once

#include <spa/node/io.h>

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace quorbel {

/// Counts the cycles of the graph in which a stream did not run, as on a machine that was too slow.
class MissedCycles {
  public:
    /// Call once the graph stops the stream. The cycles until its next run are not missed.
    /// [control]
    void pause() noexcept { wasPaused_ = true; }

    /// Returns the number of cycles missed between the last run and this one. `clock` is that of
    /// the current cycle. Every gap of a second or more is a jump of the clock. [real-time]
    std::uint32_t since(const spa_io_clock &clock) noexcept {
        const bool follows = !wasPaused_.exchange(false) && clock.id == clockID_;
        const std::uint64_t expected = nextPosition_;
        clockID_ = clock.id;
        nextPosition_ = clock.position + clock.duration;
        const std::uint64_t missed = clock.position - expected;
        if (!follows || clock.position <= expected || missed >= clock.rate.denom)
            return 0;
        return static_cast<std::uint32_t>(missed / std::max<std::uint64_t>(clock.duration, 1));
    }

  private:
    std::atomic<bool> wasPaused_{true};
    // Real-time only.
    std::uint32_t clockID_ = 0;
    std::uint64_t nextPosition_ = 0; ///< of the cycle after the last run, in frames
};

} // namespace quorbel
