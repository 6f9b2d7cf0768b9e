#include "engine/AudioRingBuffer.h"

#include "platform/core/RingPieces.h"

#include <algorithm>
#include <mutex>

namespace quorbel {

AudioRingBuffer::AudioRingBuffer(std::int64_t capacityFrames)
    : capacity_(std::max<std::int64_t>(capacityFrames, 1)),
      left(static_cast<std::size_t>(capacity_), 0.0F),
      right(static_cast<std::size_t>(capacity_), 0.0F) {}

void AudioRingBuffer::write(const PCMBuffer &buffer) noexcept {
    const float *sourceLeft = buffer.channelData(0);
    const std::int64_t frames = buffer.frameLength();
    if (sourceLeft == nullptr || frames == 0)
        return;
    const float *sourceRight = sourceLeft;
    if (buffer.format().channelCount >= 2 && buffer.channelData(1) != nullptr)
        sourceRight = buffer.channelData(1);

    const std::lock_guard guard(lock);
    cadreScrise += frames;
    // Keeps only the end of a block longer than the ring.
    const std::int64_t kept = std::min(frames, capacity_);
    const std::int64_t skipped = frames - kept;
    forRingPieces(static_cast<std::uint64_t>(writeFrame + skipped), static_cast<std::size_t>(kept),
                  left.size(), [&](std::size_t index, std::size_t offset, std::size_t count) {
                      const std::size_t from = static_cast<std::size_t>(skipped) + offset;
                      std::copy_n(sourceLeft + from, count, left.data() + index);
                      std::copy_n(sourceRight + from, count, right.data() + index);
                  });
    writeFrame += frames;
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
    forRingPieces(static_cast<std::uint64_t>(readFrame), static_cast<std::size_t>(toCopy),
                  left.size(), [&](std::size_t index, std::size_t offset, std::size_t count) {
                      std::copy_n(left.data() + index, count, destinationLeft + offset);
                      if (destinationRight != nullptr)
                          std::copy_n(right.data() + index, count, destinationRight + offset);
                  });
    readFrame += toCopy;
    const std::int64_t shortfall = frameCount - toCopy;
    cadreDeTacere += shortfall;
    std::fill_n(destinationLeft + toCopy, shortfall, 0.0F);
    if (destinationRight != nullptr)
        std::fill_n(destinationRight + toCopy, shortfall, 0.0F);
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
