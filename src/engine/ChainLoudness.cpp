#include "engine/ChainLoudness.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel {
namespace {

constexpr double windowSeconds = 3.0;
constexpr double stretchSeconds = 0.1;
constexpr double minimumGapSeconds = 0.15;
constexpr double maximumGapSeconds = 0.45;

/// Five time constants of the weighting's high pass.
constexpr double settlingSeconds = 0.02;

/// Smoothing coefficient of the means for one stretch and its average gap.
const double stretchWeight =
    1.0 -
    std::exp(-(stretchSeconds + 0.5 * (minimumGapSeconds + maximumGapSeconds)) / windowSeconds);

} // namespace

Status ChainLoudness::Before::allocateRenderResources(const StreamFormat &format,
                                                      std::uint32_t maximumFrames) {
    for (std::vector<float> &channel : channels_)
        channel.assign(maximumFrames, 0.0F);
    sampleRate_ = format.sampleRate;
    reset();
    return statusOK;
}

void ChainLoudness::Before::reset() {
    frames_ = 0;
    isStretch_ = false;
    framesLeft_ = 0.0;
}

bool ChainLoudness::Before::isInStretch(std::uint32_t frames) noexcept {
    if (framesLeft_ <= 0.0) {
        isStretch_ = !isStretch_;
        framesLeft_ = stretchSeconds * sampleRate_;
        if (!isStretch_) {
            // Multiples of the golden ratio, modulo 1, spread evenly for any number of gaps.
            gapPhase_ = std::fmod(gapPhase_ + std::numbers::phi, 1.0);
            framesLeft_ = std::lerp(minimumGapSeconds, maximumGapSeconds, gapPhase_) * sampleRate_;
        }
    }
    framesLeft_ -= frames;
    return isStretch_;
}

Status ChainLoudness::Before::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                                     std::uint32_t frames) noexcept {
    frames_ = isInStretch(frames) && buffers.isStereo() ? frames : 0;
    for (std::size_t channel = 0; frames_ > 0 && channel < channels_.size(); ++channel)
        std::copy_n(buffers.data[channel], frames, channels_[channel].data());
    return statusOK;
}

Status ChainLoudness::After::allocateRenderResources(const StreamFormat &format,
                                                     std::uint32_t /*maximumFrames*/) {
    sampleRate_ = format.sampleRate;
    weighting_ = KWeighting(sampleRate_);
    reset();
    return statusOK;
}

void ChainLoudness::After::reset() {
    beginStretch();
    means_ = {};
    for (std::atomic<float> &power : published_)
        power.store(0.0F, order);
}

void ChainLoudness::After::beginStretch() noexcept {
    weighting_.clear();
    settlingFrames_ = static_cast<std::uint32_t>(settlingSeconds * sampleRate_);
    sums_ = {};
    summedFrames_ = 0;
}

void ChainLoudness::After::endStretch() noexcept {
    for (std::size_t i = 0; i < means_.size(); ++i) {
        const double power = 0.5 * (sums_[2 * i] + sums_[2 * i + 1]) / summedFrames_;
        means_[i] += stretchWeight * (power - means_[i]);
        published_[i].store(static_cast<float>(means_[i]), order);
    }
    beginStretch();
}

Status ChainLoudness::After::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                                    std::uint32_t frames) noexcept {
    if (!buffers.isStereo() || before_.frames() != frames) {
        if (summedFrames_ > 0)
            endStretch();
        return statusOK;
    }
    const auto squares = [&](std::uint32_t begin, std::uint32_t count) {
        return weighting_.squares({before_.channel(0) + begin, before_.channel(1) + begin,
                                   buffers.data[0] + begin, buffers.data[1] + begin},
                                  count);
    };
    const std::uint32_t settling = std::min(settlingFrames_, frames);
    if (settling > 0)
        (void)squares(0, settling);
    settlingFrames_ -= settling;
    const KWeighting::Sums sums = squares(settling, frames - settling);
    for (std::size_t i = 0; i < sums.size(); ++i)
        sums_[i] += sums[i];
    summedFrames_ += frames - settling;
    return statusOK;
}

std::optional<float> ChainLoudness::matchingGainDB() const {
    constexpr float quietest = 1e-7F;
    const float power = after_.powerBefore();
    const float wanted = after_.powerAfter();
    if (!(power > quietest) || !(wanted > quietest))
        return std::nullopt;
    return std::clamp(10.0F * std::log10(wanted / power), -24.0F, 24.0F);
}

} // namespace quorbel
