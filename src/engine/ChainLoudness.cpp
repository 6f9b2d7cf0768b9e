#include "engine/ChainLoudness.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quorbel {
namespace {

constexpr double windowSeconds = 3.0;

} // namespace

Status ChainLoudness::Before::allocateRenderResources(const StreamFormat & /*format*/,
                                                      std::uint32_t maximumFrames) {
    for (std::vector<float> &channel : channels_)
        channel.assign(maximumFrames, 0.0F);
    frames_ = 0;
    return statusOK;
}

Status ChainLoudness::Before::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                                     std::uint32_t frames) noexcept {
    frames_ = buffers.isStereo() ? frames : 0;
    for (std::size_t channel = 0; frames_ > 0 && channel < channels_.size(); ++channel)
        std::copy_n(buffers.data[channel], frames, channels_[channel].data());
    return statusOK;
}

Status ChainLoudness::After::allocateRenderResources(const StreamFormat &format,
                                                     std::uint32_t /*maximumFrames*/) {
    sampleRate_ = format.sampleRate;
    reset();
    return statusOK;
}

void ChainLoudness::After::reset() {
    weighting_ = KWeighting(sampleRate_);
    weightFrames_ = 0;
    means_ = {};
    for (std::atomic<float> &power : published_)
        power.store(0.0F, order);
}

Status ChainLoudness::After::render(const RenderTime & /*time*/, AudioBufferList &buffers,
                                    std::uint32_t frames) noexcept {
    if (!buffers.isStereo() || before_.frames() != frames)
        return statusOK;
    const KWeighting::Sums sums = weighting_.squares(
        {before_.channel(0), before_.channel(1), buffers.data[0], buffers.data[1]}, frames);
    if (std::exchange(weightFrames_, frames) != frames)
        weight_ = 1.0 - std::exp(-(frames / sampleRate_) / windowSeconds);
    for (std::size_t i = 0; i < means_.size(); ++i) {
        means_[i] += weight_ * (0.5 * (sums[2 * i] + sums[2 * i + 1]) / frames - means_[i]);
        published_[i].store(static_cast<float>(means_[i]), order);
    }
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
