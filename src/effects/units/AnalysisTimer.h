#pragma once

#include "effects/units/RingAnalysis.h"
#include "platform/threads/SerialQueue.h"

#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace quorbel {

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
