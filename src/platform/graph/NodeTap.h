#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/PCMBuffer.h"
#include "platform/core/StreamFormat.h"
#include "platform/threads/SerialQueue.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

namespace quorbel {

/// Copies what a stage has rendered to a listener, in blocks of a fixed length. The render thread
/// only ever writes into a ring and never waits; a serial queue empties it. In manual rendering,
/// where everything is one thread, the listener is called inside `write` instead.
class NodeTap {
  public:
    using Block = std::function<void(const PCMBuffer &buffer)>;

    enum class Delivery { onQueue, insideWrite };

    explicit NodeTap(Delivery delivery);
    ~NodeTap();
    NodeTap(const NodeTap &) = delete;
    NodeTap &operator=(const NodeTap &) = delete;

    /// Replaces what was installed. `format` is of one or two channels. `queue`, not needed for
    /// delivery inside `write`, must outlive the installation. [main]
    void install(const StreamFormat &format, std::uint32_t bufferFrames, Block block,
                 SerialQueue *queue);

    /// After this the block is not called again. [main]
    void remove();

    /// [render]
    [[nodiscard]] bool isInstalled() const noexcept {
        return target_.load(std::memory_order_acquire) != nullptr;
    }

    /// Passes the block on if anybody listens; drops it if the listener is too slow. [render]
    void write(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

  private:
    class Ring;

    void deliver();

    const Delivery delivery_;
    std::unique_ptr<Ring>
        ring_; // made by the first installation, kept: the writer may still be in it
    std::atomic<Ring *> target_{nullptr}; // where the render thread writes, if anybody listens

    // Changed only while nothing is delivered.
    SerialQueue *queue_ = nullptr;
    SerialQueue::TimerID queueTimer_ = 0;
    std::unique_ptr<PCMBuffer> buffer_;
    Block block_;
};

} // namespace quorbel
