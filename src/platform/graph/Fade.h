#pragma once

#include "platform/core/AudioBufferList.h"

#include <atomic>
#include <cstdint>

namespace quorbel {

/// A gain that runs between silence and 1 in a straight line, so that sound neither starts nor ends
/// with a click. At rest at 1 it costs nothing and is bit-exact.
class Fade {
  public:
    static constexpr double seconds = 0.02; ///< from one end to the other

    /// While nothing renders.
    void setSampleRate(double sampleRate) {
        step_ = static_cast<float>(1.0 / (seconds * sampleRate));
    }

    /// The next block begins in silence and rises, or is at full level at once. While nothing
    /// renders.
    void startSilent();
    void startFull();

    /// From the next block on the sound goes down to silence and stays there. [any]
    void goDown() { rises_.store(false, std::memory_order_relaxed); }

    /// True once a block has ended in silence. [any]
    [[nodiscard]] bool isSilent() const { return silent_.load(std::memory_order_acquire); }

    /// [render]
    void apply(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

  private:
    float step_ = 1.0F; ///< per frame
    float gain_ = 1.0F; ///< render only, while it runs
    std::atomic<bool> rises_{true};
    std::atomic<bool> silent_{false};
};

} // namespace quorbel
