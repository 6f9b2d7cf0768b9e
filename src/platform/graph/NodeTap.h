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

/// Copies a stage's output to a listener, in blocks of a fixed length. The render thread writes
/// into a ring and never waits; a serial queue empties it. Manual rendering has one thread and
/// calls the listener inside `write` instead.
class NodeTap {
  public:
    using Block = std::function<void(const PCMBuffer &buffer)>;

    enum class Delivery { onQueue, insideWrite };

    explicit NodeTap(Delivery delivery);
    ~NodeTap();
    NodeTap(const NodeTap &) = delete;
    NodeTap &operator=(const NodeTap &) = delete;

    /// Installs a listener; replaces an earlier one. `format` has one or two channels. `queue` must
    /// outlive the installation; delivery inside `write` needs none. [main]
    void install(const StreamFormat &format, std::uint32_t bufferFrames, Block block,
                 SerialQueue *queue);

    /// Removes the listener; its block is never called after the return. [main]
    void remove();

    /// [render]
    [[nodiscard]] bool isInstalled() const noexcept {
        return target_.load(std::memory_order_acquire) != nullptr;
    }

    /// Passes the samples to the listener, if any; drops them if the listener is too slow. [render]
    void write(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

  private:
    class Ring;

    void deliver();

    const Delivery delivery_;
    std::unique_ptr<Ring>
        ring_; // made by the first installation; kept because the writer may still use it
    std::atomic<Ring *> target_{nullptr}; // the render thread's ring; null without a listener

    // Constant while blocks are delivered.
    SerialQueue *queue_ = nullptr;
    SerialQueue::TimerID queueTimer_ = 0;
    std::unique_ptr<PCMBuffer> buffer_;
    Block block_;
};

} // namespace quorbel
