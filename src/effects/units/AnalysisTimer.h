#pragma once

#include "platform/threads/SerialQueue.h"

#include <memory>
#include <string>
#include <utility>

namespace quorbel {

/// A background analysis on a serial queue of its own: the first after 100 ms, then every 50 ms.
/// [main]
class AnalysisTimer {
  public:
    AnalysisTimer(SerialQueueFactory queues, std::string queueName)
        : queues_(std::move(queues)), queueName_(std::move(queueName)) {}

    /// Does nothing if it runs. `analyze` [analysis].
    void start(SerialQueue::Task analyze) {
        if (queue_)
            return;
        queue_ = queues_(queueName_);
        queue_->repeating(0.1, 0.05, std::move(analyze));
    }

    /// When this returns, no analysis is under way and none will come.
    void stop() { queue_.reset(); }

  private:
    SerialQueueFactory queues_;
    std::string queueName_;
    std::unique_ptr<SerialQueue> queue_;
};

} // namespace quorbel
