#include "engine/AudioRingBuffer.h"

#include <algorithm>
#include <mutex>

namespace quorbel {

AudioRingBuffer::AudioRingBuffer(std::int64_t capacityFrames)
    : capacity_(std::max<std::int64_t>(capacityFrames, 1)),
      left(static_cast<std::size_t>(capacity_), 0.0F),
      right(static_cast<std::size_t>(capacity_), 0.0F) {}

void AudioRingBuffer::write(const PCMBuffer &buffer) noexcept {
    const float *sourceLeft = buffer.channelData(0);
    std::int64_t remaining = buffer.frameLength();
    if (sourceLeft == nullptr || remaining == 0)
        return;
    const float *sourceRight = sourceLeft;
    if (buffer.format().channelCount >= 2 && buffer.channelData(1) != nullptr)
        sourceRight = buffer.channelData(1);

    const std::lock_guard guard(lock);
    cadreScrise += remaining;
    while (remaining > 0) {
        const std::int64_t index = writeFrame % capacity_;
        const std::int64_t run = std::min(capacity_ - index, remaining);
        std::copy_n(sourceLeft, run, left.data() + index);
        std::copy_n(sourceRight, run, right.data() + index);
        writeFrame += run;
        sourceLeft += run;
        sourceRight += run;
        remaining -= run;
    }
    const std::int64_t overflow = writeFrame - readFrame - capacity_;
    if (overflow > 0) {
        cadreTaiate += overflow;
        readFrame += overflow;
    }
}

void AudioRingBuffer::read(const AudioBufferList &into, std::int64_t frameCount) noexcept {
    if (frameCount < 1 || into.bufferCount == 0 || into.data[0] == nullptr)
        return;
    float *const destinationLeft = into.data[0];
    float *const destinationRight = into.bufferCount >= 2 ? into.data[1] : nullptr;

    const std::lock_guard guard(lock);
    cadreCitite += frameCount;
    const std::int64_t toCopy = std::min(writeFrame - readFrame, frameCount);
    std::int64_t copied = 0;
    while (copied < toCopy) {
        const std::int64_t index = readFrame % capacity_;
        const std::int64_t run = std::min(capacity_ - index, toCopy - copied);
        std::copy_n(left.data() + index, run, destinationLeft + copied);
        if (destinationRight != nullptr)
            std::copy_n(right.data() + index, run, destinationRight + copied);
        readFrame += run;
        copied += run;
    }
    const std::int64_t shortfall = frameCount - copied;
    cadreDeTacere += shortfall;
    std::fill_n(destinationLeft + copied, shortfall, 0.0F);
    if (destinationRight != nullptr)
        std::fill_n(destinationRight + copied, shortfall, 0.0F);
}

AudioRingBuffer::Pierderi AudioRingBuffer::preiaPierderi() noexcept {
    const std::lock_guard guard(lock);
    const Pierderi taken{cadreTaiate, cadreDeTacere, cadreScrise, cadreCitite};
    cadreTaiate = cadreDeTacere = cadreScrise = cadreCitite = 0;
    return taken;
}

void AudioRingBuffer::discard() noexcept {
    const std::lock_guard guard(lock);
    readFrame = writeFrame;
}

void AudioRingBuffer::reset() noexcept {
    // The samples may stay: with equal positions they are never read.
    const std::lock_guard guard(lock);
    writeFrame = readFrame = 0;
    cadreTaiate = cadreDeTacere = cadreScrise = cadreCitite = 0;
}

} // namespace quorbel
