#include "engine/CaptureConversion.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

constexpr double bufferFrames = 8192.0; // of source frames at a ratio of at most 1
constexpr double marginFrames = 256.0;  // largest excess of a converter's output over the ratio

} // namespace

CaptureConversion::CaptureConversion(const StreamFormat &source, const StreamFormat &chain)
    : source_(source), ratio_(chain.sampleRate / source.sampleRate),
      capacity_(static_cast<std::uint32_t>(bufferFrames * std::max(ratio_, 1.0))) {
    if (source.sampleRate == chain.sampleRate)
        return;
    const StreamFormat converted{.sampleRate = chain.sampleRate,
                                 .channelCount = std::min(source.channelCount, chain.channelCount)};
    const auto longestCycle =
        static_cast<std::uint32_t>(std::ceil(capacity_ / std::min(ratio_, 1.0)));
    converter_ = std::make_unique<SampleRateConverter>(source.sampleRate, chain.sampleRate,
                                                       converted.channelCount, longestCycle);
    convertedBuffer.emplace(converted, capacity_);
    const auto leadFrames =
        static_cast<std::uint32_t>(std::ceil(converter_->latencyFrames() * ratio_));
    lead_.emplace(converted, leadFrames);
    lead_->setFrameLength(leadFrames);
}

const PCMBuffer *CaptureConversion::convert(const PCMBuffer &cycle) noexcept {
    if (capacity_ < ratio_ * cycle.frameLength() + marginFrames)
        return nullptr;
    if (copies())
        return &cycle;
    const auto progress =
        converter_->process(cycle.bufferList(), cycle.frameLength(), convertedBuffer->bufferList(),
                            convertedBuffer->frameCapacity());
    convertedBuffer->setFrameLength(progress.produced);
    return progress.produced > 0 ? &*convertedBuffer : nullptr;
}

} // namespace quorbel
