#pragma once

#include "platform/threads/SerialQueue.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace quorbel {

/// A background analysis on a serial queue of its own: the first after 100 ms, then every 50 ms.
/// While the unit is idle, it rests after the first analysis that changes nothing, because later
/// ones would not either. [main]
class AnalysisTimer {
  public:
    /// Returns whether anything is different from the call before. [analysis]
    using Analysis = std::function<bool()>;

    AnalysisTimer(SerialQueueFactory queues, std::string queueName)
        : queues_(std::move(queues)), queueName_(std::move(queueName)) {}
    ~AnalysisTimer() { stop(); }
    AnalysisTimer(const AnalysisTimer &) = delete;
    AnalysisTimer &operator=(const AnalysisTimer &) = delete;

    /// Does nothing if it runs.
    void start(Analysis analyze) {
        if (queue_)
            return;
        analyze_ = std::move(analyze);
        queue_ = queues_(queueName_);
        const std::lock_guard guard(mutex_);
        schedule(firstSeconds);
    }

    /// When this returns, no analysis is under way and none will come.
    void stop() {
        queue_.reset();
        isResting_ = false;
    }

    /// Whether no sound comes until further notice.
    void setIdle(bool isIdle) {
        const std::lock_guard guard(mutex_);
        isIdle_ = isIdle;
        if (!isIdle && isResting_ && queue_)
            schedule(intervalSeconds);
    }

  private:
    static constexpr double firstSeconds = 0.1;
    static constexpr double intervalSeconds = 0.05;

    void schedule(double delaySeconds) {
        isResting_ = false;
        timer_ = queue_->repeating(delaySeconds, intervalSeconds,
                                   [this, queue = queue_.get()] { tick(*queue); });
    }

    /// [analysis]
    void tick(SerialQueue &queue) {
        if (analyze_())
            return;
        const std::lock_guard guard(mutex_);
        if (!isIdle_ || isResting_)
            return;
        isResting_ = true;
        queue.cancel(timer_);
    }

    SerialQueueFactory queues_;
    std::string queueName_;
    Analysis analyze_;
    std::unique_ptr<SerialQueue> queue_;

    std::mutex mutex_; // guards what follows; never held while an analysis runs
    SerialQueue::TimerID timer_ = 0;
    bool isIdle_ = false;
    bool isResting_ = false;
};

} // namespace quorbel
