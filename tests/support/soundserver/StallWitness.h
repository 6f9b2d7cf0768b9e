#pragma once

#include "soundserver/Recorder.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace quorbel::soundserver {

/// Detects stalls of the machine, as virtual ones have. On every processor a thread, as urgent as
/// those of the sound server where that is allowed, wakes often and records late wake-ups.
class StallWitness {
  public:
    /// From the planned wake-up to the actual one, in nanoseconds of the monotonic clock.
    struct Stall {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    /// Records every wake-up that is late by `lateSeconds` or more.
    explicit StallWitness(double lateSeconds);
    ~StallWitness();
    StallWitness(const StallWitness &) = delete;
    StallWitness &operator=(const StallWitness &) = delete;

    /// The stalls so far.
    [[nodiscard]] std::vector<Stall> stalls() const;

  private:
    void watch(int processor);

    const std::chrono::nanoseconds late_;
    std::atomic<bool> ends_{false};
    mutable std::mutex mutex_;
    std::vector<Stall> stalls_;
    std::vector<std::thread> watchers_;
};

/// The parts of a recording that do not count for or against a program under test: the machine
/// stalled, or the recorder missed a cycle. The recording must outlive this object.
class Disturbances {
  public:
    Disturbances(const StallWitness &witness, const Recording &heard, int quantum);

    /// True if there was none during the recording, nor in the second before it.
    [[nodiscard]] bool none() const { return stalls_.empty(); }
    /// True during a disturbance and for two cycles before and after it, in which the lost cycle is
    /// silent and the sound jumps to the next one.
    [[nodiscard]] bool include(std::size_t frame) const;
    [[nodiscard]] double undisturbedSeconds() const;

  private:
    const Recording &heard_;
    std::vector<StallWitness::Stall> stalls_;
    std::uint64_t margin_; ///< nanoseconds
};

} // namespace quorbel::soundserver
