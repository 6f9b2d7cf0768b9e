#include "effects/units/AnalysisTimer.h"

#include <cmath>
#include <utility>

namespace quorbel {

void RingAnalysis::begin(float sampleRate) {
    const auto framesOf = [sampleRate](double seconds) {
        return static_cast<std::uint64_t>(std::llround(seconds * static_cast<double>(sampleRate)));
    };
    sampleRate_ = sampleRate;
    interval_ = framesOf(intervalSeconds);
    next_ = ring_.written() + framesOf(firstSeconds);
}

bool RingAnalysis::estimateNow() {
    const std::uint64_t written = ring_.written();
    const float before = result_.load();
    result_.store(follow(before, written));
    next_ = written + interval_;
    return std::exchange(writtenBefore_, written) != written || result_.load() != before;
}

void RingAnalysis::catchUp() {
    for (const std::uint64_t written = ring_.written(); next_ <= written; next_ += interval_)
        result_.store(follow(result_.load(), next_));
}

double RingAnalysis::secondsToNext() const {
    const std::uint64_t written = ring_.written();
    return next_ > written ? static_cast<double>(next_ - written) / static_cast<double>(sampleRate_)
                           : intervalSeconds;
}

namespace {

/// Interval of the batches in seconds. At 48 kHz the ring holds a batch, the input of one estimate,
/// and 97 ms of slack.
constexpr double batchSeconds = 0.5;

} // namespace

void AnalysisTimer::start(std::shared_ptr<RingAnalysis> analysis, float sampleRate) {
    if (queue_)
        return;
    analysis_ = std::move(analysis);
    analysis_->begin(sampleRate);
    queue_ = queues_(queueName_);
    schedule(RingAnalysis::firstSeconds);
}

void AnalysisTimer::stop() {
    if (!queue_)
        return;
    queue_.reset();
    isResting_ = false;
    if (isBatched_)
        analysis_->catchUp();
}

void AnalysisTimer::set(bool isIdle, bool isUsed) {
    const bool isBatched = !isIdle && !isUsed;
    const bool wasBatched = std::exchange(isBatched_, isBatched);
    SerialQueue::TimerID timer = 0;
    bool hasRested = false;
    {
        const std::lock_guard guard(mutex_);
        isIdle_ = isIdle;
        timer = timer_;
        hasRested = isResting_;
    }
    if (!queue_)
        return;
    if (isBatched != wasBatched) {
        queue_->cancel(timer);
        if (wasBatched)
            analysis_->catchUp();
        schedule(isBatched ? RingAnalysis::intervalSeconds : analysis_->secondsToNext());
    } else if (hasRested && !isIdle) {
        schedule(RingAnalysis::intervalSeconds);
    }
}

void AnalysisTimer::schedule(double firstSeconds) {
    const std::lock_guard guard(mutex_); // the task may rest before this returns
    isResting_ = false;
    if (isBatched_)
        timer_ = queue_->repeating(firstSeconds, batchSeconds,
                                   [analysis = analysis_.get()] { analysis->catchUp(); });
    else
        timer_ = queue_->repeating(firstSeconds, RingAnalysis::intervalSeconds,
                                   [this, queue = queue_.get()] { estimateOrRest(*queue); });
}

/// [analysis]
void AnalysisTimer::estimateOrRest(SerialQueue &queue) {
    if (analysis_->estimateNow())
        return;
    const std::lock_guard guard(mutex_);
    if (!isIdle_ || isResting_)
        return;
    isResting_ = true;
    queue.cancel(timer_);
}

} // namespace quorbel
