#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Measures the limiter's reduction time in the last minute of sound, and its largest reduction
/// since cleared. One thread counts, others read at any time.
class LimiterActivity {
  public:
    /// Counts a block at `sampleRate` Hz that was reduced by up to `reductionDB`. [render]
    void count(std::uint32_t frames, float reductionDB, float sampleRate) noexcept {
        if (clearing_.load(order))
            largestDB_.store(0.0F, order);
        largestDB_.store(std::max(largestDB_.load(order), reductionDB), order);
        clearing_.store(false, order);
        const float seconds = static_cast<float>(frames) / sampleRate;
        secondsInSlot_ += seconds;
        if (secondsInSlot_ >= 1.0F) {
            secondsInSlot_ = 0.0F;
            slot_ = (slot_ + 1) % slots_.size();
            slots_[slot_].store(0.0F, order);
        }
        if (reductionDB > smallestDB)
            slots_[slot_].store(slots_[slot_].load(order) + seconds, order);
    }

    /// Seconds with reduction in the last minute of sound, in whole blocks. [any]
    [[nodiscard]] float secondsInLastMinute() const noexcept {
        float sum = 0.0F;
        for (const std::atomic<float> &seconds : slots_)
            sum += seconds.load(order);
        return sum;
    }
    /// dB, not negative. [any]
    [[nodiscard]] float largestDB() const noexcept {
        return clearing_.load(order) ? 0.0F : largestDB_.load(order);
    }
    /// Clears the largest reduction; readers see 0 at once. [main]
    void clear() noexcept { clearing_.store(true, order); }

  private:
    static constexpr auto order = std::memory_order_relaxed;
    /// Smallest counted reduction: the release approaches 0 dB for seconds, and less is inaudible.
    static constexpr float smallestDB = 0.1F;

    std::array<std::atomic<float>, 60> slots_{}; ///< seconds of reduction in one second of sound
    std::size_t slot_ = 0;
    float secondsInSlot_ = 0.0F;
    std::atomic<float> largestDB_ = 0.0F;
    std::atomic<bool> clearing_ = false; ///< until the next block
};

} // namespace quorbel
