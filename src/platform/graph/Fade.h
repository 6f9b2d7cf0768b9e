#pragma once

#include "platform/core/AudioBufferList.h"

#include <atomic>
#include <cstdint>

namespace quorbel {

/// A linear gain ramp between 0 and 1, against clicks at start and end. Skips blocks bit-exactly at
/// a constant gain of 1.
class Fade {
  public:
    static constexpr double seconds = 0.02; ///< of a full ramp

    /// Only while nothing renders.
    void setSampleRate(double sampleRate) {
        step_ = static_cast<float>(1.0 / (seconds * sampleRate));
    }

    /// Starts the next block silent and rising, or at full level. Only while nothing renders.
    void startSilent();
    void startFull();

    /// Fades to silence from the next block on; holds it until restarted. [any]
    void goDown() { rises_.store(false, std::memory_order_relaxed); }

    /// True once a block has ended in silence. [any]
    [[nodiscard]] bool isSilent() const { return silent_.load(std::memory_order_acquire); }

    /// [render]
    void apply(const AudioBufferList &buffers, std::uint32_t frames) noexcept;

  private:
    float step_ = 1.0F; ///< per frame
    float gain_ = 1.0F; ///< render only while running
    std::atomic<bool> rises_{true};
    std::atomic<bool> silent_{false};
};

} // namespace quorbel
