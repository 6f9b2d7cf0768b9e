#include "effects/units/RingAnalysis.h"

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

} // namespace quorbel
