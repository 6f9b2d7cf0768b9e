#include "effects/cores/LookaheadLimiterCore.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

void LookaheadLimiterCore::prepare(float sampleRate) {
    constexpr float lookaheadSeconds = 0.0013F;
    constexpr float releaseSeconds = 0.05F;
    constexpr long shortestLookahead = 8;

    for (std::vector<float> *ring : {&delayL_, &delayR_, &peaks_})
        std::vector<float>().swap(*ring);
    writeIndex_ = 0;
    gain_ = 1.0F;
    gainReductionDB_ = 0.0F;

    lookahead_ = static_cast<std::size_t>(
        std::max(std::lround(sampleRate * lookaheadSeconds), shortestLookahead));
    // Four time constants within the look-ahead: the gain gets most of the way in time.
    attackCoeff_ = 1.0F - std::exp(-4.0F / static_cast<float>(lookahead_));
    releaseCoeff_ = 1.0F - std::exp(-1.0F / (sampleRate * releaseSeconds));

    std::vector<float> rings[3];
    for (std::vector<float> &ring : rings)
        ring.assign(lookahead_ + 1, 0.0F);
    delayL_.swap(rings[0]);
    delayR_.swap(rings[1]);
    peaks_.swap(rings[2]);
}

void LookaheadLimiterCore::process(float *left, float *right, std::uint32_t frameCount,
                                   float thresholdLin) noexcept {
    const std::size_t capacity = peaks_.size();
    if (capacity == 0)
        return;

    std::size_t write = writeIndex_;
    float gain = gain_;
    float maxReduction = 0.0F;
    for (std::uint32_t i = 0; i < frameCount; ++i) {
        delayL_[write] = left[i];
        delayR_[write] = right[i];
        peaks_[write] = std::max(std::abs(left[i]), std::abs(right[i]));
        const std::size_t read = write + 1 == capacity ? 0 : write + 1;

        float peak = 0.0F;
        for (const float candidate : peaks_)
            peak = std::max(peak, candidate);

        const float target = thresholdLin < peak ? thresholdLin / peak : 1.0F;
        const float coefficient = target < gain ? attackCoeff_ : releaseCoeff_;
        gain += (target - gain) * coefficient;

        // The gain may still be on its way down when the peak is here.
        left[i] = std::clamp(delayL_[read] * gain, -thresholdLin, thresholdLin);
        right[i] = std::clamp(delayR_[read] * gain, -thresholdLin, thresholdLin);
        maxReduction = std::max(maxReduction, 1.0F - gain);
        write = read;
    }
    writeIndex_ = write;
    gain_ = gain;
    // Adding zero turns the negative zero of an untouched block into the positive one.
    gainReductionDB_ = -20.0F * std::log10(std::max(1.0F - maxReduction, 0.000001F)) + 0.0F;
}

} // namespace quorbel
