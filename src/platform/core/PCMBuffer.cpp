#include "platform/core/PCMBuffer.h"

#include <algorithm>
#include <cassert>

namespace quorbel {

PCMBuffer::PCMBuffer(StreamFormat format, std::uint32_t frameCapacity)
    : format_(format), frameCapacity_(frameCapacity) {
    const std::uint32_t channels = std::min(format.channelCount, AudioBufferList::maximumBuffers);
    storage_.assign(std::size_t{channels} * frameCapacity, 0.0F);
    list_.bufferCount = channels;
    for (std::uint32_t channel = 0; channel < channels; ++channel)
        list_.data[channel] = storage_.data() + std::size_t{channel} * frameCapacity;
}

PCMBuffer PCMBuffer::wrapping(StreamFormat format, const AudioBufferList &list,
                              std::uint32_t frames) noexcept {
    PCMBuffer buffer;
    buffer.format_ = format;
    buffer.frameCapacity_ = frames;
    buffer.frameLength_ = frames;
    buffer.list_ = list;
    return buffer;
}

void PCMBuffer::setFrameLength(std::uint32_t frames) noexcept {
    assert(frames <= frameCapacity_);
    frameLength_ = std::min(frames, frameCapacity_);
}

} // namespace quorbel
