#include "platform/graph/MixerNode.h"

#include "platform/units/UnitStatus.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>

namespace quorbel {

namespace {

constexpr std::uint32_t stereo = 2;

void clear(const AudioBufferList &buffers, std::uint32_t begin, std::uint32_t end) {
    for (std::uint32_t channel = 0; channel < buffers.bufferCount; ++channel)
        if (buffers.data[channel] != nullptr)
            std::fill(buffers.data[channel] + begin, buffers.data[channel] + end, 0.0F);
}

// Averages both for a single channel, so no sound grows louder; silences channels beyond two.
void spread(const AudioBufferList &from, const AudioBufferList &to, std::uint32_t frames) {
    clear(to, 0, frames);
    const float *left = from.data[0];
    const float *right = from.data[1];
    if (to.bufferCount == 1 && to.data[0] != nullptr) {
        for (std::uint32_t i = 0; i < frames; ++i)
            to.data[0][i] = 0.5F * (left[i] + right[i]);
        return;
    }
    for (std::uint32_t channel = 0; channel < std::min(to.bufferCount, stereo); ++channel)
        if (to.data[channel] != nullptr)
            std::copy_n(from.data[channel], frames, to.data[channel]);
}

} // namespace

Status MixerNode::allocateRenderResources(const StreamFormat &format, std::uint32_t maximumFrames) {
    assert(maximumFrames <= maximumBlockFrames);
    if (!format.isValid() || format.channelCount != stereo)
        return statusFormatNotSupported;
    graphRate_ = format.sampleRate;
    graphBlock_.emplace(format, maximumFrames);
    stereoBlock_.emplace(format, maximumFrames);
    time_ = {};
    return outputRate_.load() > 0.0 ? makeConverter() : statusOK;
}

void MixerNode::deallocateRenderResources() {
    converter_.reset();
    graphBlock_.reset();
    stereoBlock_.reset();
    graphRate_ = 0.0;
    convertible_ = false;
}

Status MixerNode::setOutputFormat(const StreamFormat &format) {
    outputRate_.store(format.sampleRate);
    return graphRate_ > 0.0 ? makeConverter() : statusOK;
}

Status MixerNode::makeConverter() {
    const double outputRate = outputRate_.load();
    fade_.setSampleRate(outputRate);
    converter_.reset();
    longestPull_ = maximumBlockFrames;
    convertible_ = true;
    if (outputRate == graphRate_)
        return statusOK;
    try {
        converter_ = std::make_unique<SampleRateConverter>(graphRate_, outputRate, stereo,
                                                           maximumBlockFrames);
    } catch (const std::invalid_argument &) {
        convertible_ = false;
        return statusFormatNotSupported;
    }
    while (longestPull_ > 1 && converter_->inputFramesFor(longestPull_) + 1 > maximumBlockFrames)
        longestPull_ = std::max(longestPull_ * 9 / 10, 1U);
    return statusOK;
}

StreamFormat MixerNode::outputFormat() const noexcept {
    const double rate = outputRate_.load();
    return rate > 0.0 ? StreamFormat{rate, stereo} : StreamFormat{};
}

Status MixerNode::pull(RenderPlan &plan, NodeTap &tap, const AudioBufferList &output,
                       std::uint32_t frames) noexcept {
    if (!convertible_) {
        clear(output, 0, frames);
        return statusFormatNotSupported;
    }
    const bool direct = output.bufferCount == stereo && output.isStereo();
    Status result = statusOK;
    for (std::uint32_t done = 0; done < frames;) {
        const std::uint32_t count = std::min(frames - done, longestPull_);
        const AudioBufferList target = output.advancedBy(done);
        AudioBufferList block = direct ? target : stereoBlock_->bufferList();

        const Status status = converter_ ? convert(plan, block, count) : plan.render(block, count);
        result = result == statusOK ? status : result;
        render(time_, block, count);
        tap.write(block, count);
        if (!direct)
            spread(block, target, count);

        time_.sampleTime += count;
        done += count;
    }
    return result;
}

Status MixerNode::convert(RenderPlan &plan, const AudioBufferList &output,
                          std::uint32_t frames) noexcept {
    const auto needed = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(converter_->inputFramesFor(frames), graphBlock_->frameCapacity()));
    AudioBufferList input = graphBlock_->bufferList();
    const Status status = needed > 0 ? plan.render(input, needed) : statusOK;
    const SampleRateConverter::Progress progress =
        converter_->process(input, needed, output, frames);
    clear(output, progress.produced, frames);
    return status;
}

Status MixerNode::render(const RenderTime &, AudioBufferList &buffers,
                         std::uint32_t frames) noexcept {
    fade_.apply(buffers, frames);
    return statusOK;
}

void MixerNode::reset() {
    if (converter_)
        converter_->reset();
}

} // namespace quorbel
