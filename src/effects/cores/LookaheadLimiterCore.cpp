#include "effects/cores/LookaheadLimiterCore.h"

#include "effects/cores/LimiterBlock.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

namespace {

constexpr std::uint32_t limiterBlockFrames = 128;

/// Appends `count` frames to the `lookahead` frames of the line.
void append(std::vector<float> &line, std::size_t lookahead, const float *samples,
            std::uint32_t count) noexcept {
    std::copy_n(samples, count, line.begin() + static_cast<std::ptrdiff_t>(lookahead));
}

/// Drops the oldest `count` frames.
void advance(std::vector<float> &line, std::size_t lookahead, std::uint32_t count) noexcept {
    std::copy_n(line.begin() + count, lookahead, line.begin());
}

} // namespace

void LookaheadLimiterCore::prepare(float sampleRate) {
    constexpr float lookaheadSeconds = 0.0013F;
    constexpr float releaseSeconds = 0.05F;
    constexpr long shortestLookahead = 8;

    for (std::vector<float> *line : {&delayL_, &delayR_, &peaks_, &gains_})
        std::vector<float>().swap(*line);
    gain_ = 1.0F;
    gainReductionDB_ = 0.0F;

    lookahead_ = static_cast<std::size_t>(
        std::max(std::lround(sampleRate * lookaheadSeconds), shortestLookahead));
    // Four time constants within the look-ahead: the gain covers 98 % of the distance.
    attackCoeff_ = 1.0F - std::exp(-4.0F / static_cast<float>(lookahead_));
    releaseCoeff_ = 1.0F - std::exp(-1.0F / (sampleRate * releaseSeconds));

    const std::size_t length = lookahead_ + limiterBlockFrames + blockPadding;
    std::vector<float> lines[4];
    for (std::vector<float> &line : lines)
        line.assign(length, 0.0F);
    delayL_.swap(lines[0]);
    delayR_.swap(lines[1]);
    peaks_.swap(lines[2]);
    gains_.swap(lines[3]);
}

void LookaheadLimiterCore::clear() noexcept {
    for (std::vector<float> *line : {&delayL_, &delayR_, &peaks_})
        std::fill(line->begin(), line->end(), 0.0F);
    gain_ = 1.0F;
}

void LookaheadLimiterCore::process(float *left, float *right, std::uint32_t frameCount,
                                   float thresholdLin) noexcept {
    if (gains_.empty())
        return;
    float smallestGain = 1.0F;
    for (std::uint32_t begin = 0; begin < frameCount; begin += limiterBlockFrames)
        processBlock(left + begin, right + begin, std::min(limiterBlockFrames, frameCount - begin),
                     thresholdLin, smallestGain);
    // Adding zero turns the negative zero of an untouched block into a positive one.
    gainReductionDB_ = reductionDB_.of(
        [](float gain) {
            const float maxReduction = 1.0F - gain;
            return -20.0F * std::log10(std::max(1.0F - maxReduction, 0.000001F)) + 0.0F;
        },
        smallestGain);
}

void LookaheadLimiterCore::processBlock(float *left, float *right, std::uint32_t count,
                                        float thresholdLin, float &smallestGain) noexcept {
    append(delayL_, lookahead_, left, count);
    append(delayR_, lookahead_, right, count);
    float *const newPeaks = peaks_.data() + lookahead_;
    for (std::uint32_t i = 0; i < count; ++i)
        newPeaks[i] = std::max(std::abs(left[i]), std::abs(right[i]));

    const float smallest = limitBlock({.peaks = peaks_.data(),
                                       .lookahead = static_cast<std::uint32_t>(lookahead_),
                                       .count = count,
                                       .threshold = thresholdLin,
                                       .attackCoeff = attackCoeff_,
                                       .releaseCoeff = releaseCoeff_,
                                       .gains = gains_.data(),
                                       .delayedL = delayL_.data(),
                                       .delayedR = delayR_.data(),
                                       .outL = left,
                                       .outR = right},
                                      gain_);
    smallestGain = std::min(smallestGain, smallest);
    for (std::vector<float> *line : {&delayL_, &delayR_, &peaks_})
        advance(*line, lookahead_, count);
}

} // namespace quorbel
