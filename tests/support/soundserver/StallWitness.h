#pragma once

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

} // namespace quorbel::soundserver
