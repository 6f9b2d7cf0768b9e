#include "platform/graph/NodeTap.h"

#include "platform/core/RingPieces.h"

#include <algorithm>
#include <cassert>
#include <utility>
#include <vector>

namespace quorbel {

/// A two-channel ring for one writer and one reader. Positions count frames since construction.
class NodeTap::Ring {
  public:
    /// [render]
    void write(const AudioBufferList &buffers, std::uint32_t frames) noexcept {
        const std::uint64_t begin = written_.load(std::memory_order_relaxed);
        if (begin + frames - read_.load(std::memory_order_acquire) > capacity)
            return;
        for (std::uint32_t channel = 0; channel < channels; ++channel) {
            const float *source =
                buffers.data[std::min(channel, std::max(buffers.bufferCount, 1U) - 1)];
            if (source == nullptr)
                continue;
            forRingPieces(begin, frames, capacity,
                          [&](std::size_t index, std::size_t offset, std::size_t count) {
                              std::copy_n(source + offset, count, plane(channel) + index);
                          });
        }
        written_.store(begin + frames, std::memory_order_release);
    }

    /// Fills the whole capacity of `buffer`; returns false and does nothing if the ring holds fewer
    /// frames. [tap]
    bool read(PCMBuffer &buffer) noexcept {
        const std::uint64_t begin = read_.load(std::memory_order_relaxed);
        const std::uint32_t frames = buffer.frameCapacity();
        if (written_.load(std::memory_order_acquire) - begin < frames)
            return false;
        buffer.setFrameLength(frames);
        for (std::uint32_t channel = 0; channel < channels; ++channel)
            if (float *target = buffer.channelData(channel))
                forRingPieces(begin, frames, capacity,
                              [&](std::size_t index, std::size_t offset, std::size_t count) {
                                  std::copy_n(plane(channel) + index, count, target + offset);
                              });
        read_.store(begin + frames, std::memory_order_release);
        return true;
    }

    /// [tap], or while no blocks are delivered
    void skipToNewest() noexcept {
        read_.store(written_.load(std::memory_order_acquire), std::memory_order_release);
    }

    static constexpr std::uint32_t capacity = 32768; // four of the longest blocks

  private:
    static constexpr std::uint32_t channels = 2;
    [[nodiscard]] float *plane(std::uint32_t channel) noexcept {
        return samples_.data() + std::size_t{channel} * capacity;
    }

    std::vector<float> samples_ = std::vector<float>(std::size_t{channels} * capacity);
    std::atomic<std::uint64_t> written_{0};
    std::atomic<std::uint64_t> read_{0};
};

NodeTap::NodeTap(Delivery delivery) : delivery_(delivery) {}
NodeTap::~NodeTap() { remove(); }

void NodeTap::install(const StreamFormat &format, std::uint32_t bufferFrames, Block block,
                      SerialQueue *queue) {
    assert(format.channelCount <= 2);
    assert(bufferFrames > 0 && bufferFrames <= Ring::capacity);
    remove();
    if (!ring_)
        ring_ = std::make_unique<Ring>();
    ring_->skipToNewest();
    buffer_ = std::make_unique<PCMBuffer>(format, bufferFrames);
    block_ = std::move(block);
    queue_ = queue;
    if (delivery_ == Delivery::onQueue) {
        const double interval = bufferFrames / format.sampleRate;
        queueTimer_ = queue_->repeating(interval, interval, [this] { deliver(); });
    }
    target_.store(ring_.get(), std::memory_order_release);
}

void NodeTap::remove() {
    target_.store(nullptr, std::memory_order_release);
    if (queueTimer_ != 0)
        queue_->cancel(queueTimer_);
    queueTimer_ = 0;
    block_ = nullptr;
}

void NodeTap::write(const AudioBufferList &buffers, std::uint32_t frames) noexcept {
    Ring *ring = target_.load(std::memory_order_acquire);
    if (ring == nullptr)
        return;
    ring->write(buffers, frames);
    if (delivery_ == Delivery::insideWrite)
        deliver();
}

void NodeTap::deliver() {
    while (block_ && ring_->read(*buffer_))
        block_(*buffer_);
}

} // namespace quorbel
