#pragma once

#include "soundserver/Recorder.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace quorbel::soundserver {

/// Sees the machine stand still, as virtual ones do: on every processor a thread, as urgent as
/// those of the sound server where that is allowed, wakes often and notes when it could not.
class StallWitness {
  public:
    /// On the monotonic clock, in nanoseconds: when the thread should have run, and when it did.
    struct Stall {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    /// Notes every wake-up that comes `lateSeconds` too late or later.
    explicit StallWitness(double lateSeconds);
    ~StallWitness();
    StallWitness(const StallWitness &) = delete;
    StallWitness &operator=(const StallWitness &) = delete;

    /// So far.
    [[nodiscard]] std::vector<Stall> stalls() const;

  private:
    void watch(int processor);

    const std::chrono::nanoseconds late_;
    std::atomic<bool> ends_{false};
    mutable std::mutex mutex_;
    std::vector<Stall> stalls_;
    std::vector<std::thread> watchers_;
};

/// The parts of a recording that say nothing about a program under test: the machine stalled, or
/// the recorder missed a cycle. Both must outlive this object.
class Disturbances {
  public:
    Disturbances(const StallWitness &witness, const Recording &heard, int quantum);

    [[nodiscard]] bool none() const { return stalls_.empty(); }
    /// True during a disturbance and two cycles before and after it: a lost cycle is silent, and
    /// the sound jumps where the next one comes out.
    [[nodiscard]] bool include(std::size_t frame) const;
    [[nodiscard]] double undisturbedSeconds() const;

  private:
    const Recording &heard_;
    std::vector<StallWitness::Stall> stalls_;
    std::uint64_t margin_; ///< nanoseconds
};

} // namespace quorbel::soundserver
