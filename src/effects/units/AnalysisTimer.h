#pragma once

#include "effects/RelaxedFloat.h"
#include "platform/threads/SampleRing.h"
#include "platform/threads/SerialQueue.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace quorbel {

/// Updates a result by estimates of the sound in a ring: 100 ms after `begin`, then every 50 ms.
/// Belongs to one thread at a time.
class RingAnalysis {
  public:
    /// Both must outlive it; `ring` has `ringCapacity`.
    RingAnalysis(const SampleRing &ring, RelaxedFloat &result) : ring_(ring), result_(result) {}
    virtual ~RingAnalysis() = default;
    RingAnalysis(const RingAnalysis &) = delete;
    RingAnalysis &operator=(const RingAnalysis &) = delete;

    /// Capacity of the ring, in samples: two thirds of a second at 48 kHz.
    static constexpr std::size_t ringCapacity = 32768;
    static constexpr double firstSeconds = 0.1;
    static constexpr double intervalSeconds = 0.05;

    /// `sampleRate` of the sound in Hz.
    void begin(float sampleRate);

    /// Makes an estimate now. Returns true if new sound had arrived or the result has changed.
    bool estimateNow();

    /// Makes all estimates due by the received frames, each from the sound up to its own time.
    /// Skips estimates with frames that the ring has overwritten.
    void catchUp();

    /// Seconds until the next estimate, by the received frames; above 0 after `estimateNow` and
    /// `catchUp`.
    [[nodiscard]] double secondsToNext() const;

  protected:
    /// Returns the result after an estimate of the sound before frame `end` of the ring.
    [[nodiscard]] virtual float follow(float before, std::uint64_t end) = 0;

  private:
    const SampleRing &ring_;
    RelaxedFloat &result_;
    float sampleRate_ = 48'000.0F;
    std::uint64_t interval_ = 2400; ///< frames
    std::uint64_t next_ = 0;        ///< frame at which the next estimate is due
    std::uint64_t writtenBefore_ = 0;
};

/// Runs an analysis on a serial queue of its own. [main]
///
/// 1. While the result is used, makes every estimate when it is due.
/// 2. While it is not used, makes the same estimates in batches of half a second: wake-ups are the
///    bottleneck. The result is up to date when its use begins.
/// 3. While idle, rests after the first estimate without a change: later ones would change nothing.
class AnalysisTimer {
  public:
    AnalysisTimer(SerialQueueFactory queues, std::string queueName)
        : queues_(std::move(queues)), queueName_(std::move(queueName)) {}
    ~AnalysisTimer() { stop(); }
    AnalysisTimer(const AnalysisTimer &) = delete;
    AnalysisTimer &operator=(const AnalysisTimer &) = delete;

    /// Does nothing while running. `sampleRate` in Hz.
    void start(std::shared_ptr<RingAnalysis> analysis, float sampleRate);

    /// Waits for a running estimate; none follows.
    void stop();

    /// `isIdle`: no sound arrives until further notice. `isUsed`: the result is displayed or shapes
    /// the sound. Initially not idle and used.
    void set(bool isIdle, bool isUsed);

  private:
    void schedule(double firstSeconds);
    void estimateOrRest(SerialQueue &queue);

    SerialQueueFactory queues_;
    std::string queueName_;
    bool isBatched_ = false;
    std::shared_ptr<RingAnalysis> analysis_; ///< owned by the queue while a timer is set
    std::unique_ptr<SerialQueue> queue_;

    std::mutex mutex_; // guards the members below; never held during an estimate
    SerialQueue::TimerID timer_ = 0;
    bool isIdle_ = false;
    bool isResting_ = false;
};

} // namespace quorbel
