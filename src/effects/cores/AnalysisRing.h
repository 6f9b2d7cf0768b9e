#pragma once

#include "platform/threads/ShortLock.h"

#include <span>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace quorbel {

/// Carries the newest frames of a unit's input, mixed to mono, from the render thread to an
/// analysis. Both sides hold the short lock for their copy only.
class AnalysisRing {
  public:
    /// Appends (left + right) / 2. [render]
    void feed(const float *left, const float *right, std::uint32_t frames) noexcept {
        const std::lock_guard lock(lock_);
        while (frames > 0) {
            const std::size_t at = static_cast<std::size_t>(written_) % capacity;
            const auto count =
                static_cast<std::uint32_t>(std::min<std::size_t>(frames, capacity - at));
            float *const samples = samples_.data() + at;
            for (std::uint32_t i = 0; i < count; ++i)
                samples[i] = (left[i] + right[i]) * 0.5F;
            left += count;
            right += count;
            frames -= count;
            written_ += count;
        }
    }

    /// Copies the samples up to frame `end` (counted from the first ever written) in time order.
    /// Returns false and copies nothing if any of them is missing. [analysis, or main without a
    /// timer]
    [[nodiscard]] bool snapshot(std::uint64_t end, std::span<float> samples) const noexcept {
        const std::lock_guard lock(lock_);
        if (end > written_ || end < samples.size() || written_ - end + samples.size() > capacity)
            return false;
        // The oldest wanted samples lie before the array's end, the others at its beginning.
        const std::size_t at = static_cast<std::size_t>(end - samples.size()) % capacity;
        const std::size_t count = std::min(samples.size(), capacity - at);
        std::copy_n(samples_.data() + at, count, samples.data());
        std::copy_n(samples_.data(), samples.size() - count, samples.data() + count);
        return true;
    }

    /// Total frames written. [analysis, or main without a timer]
    [[nodiscard]] std::uint64_t written() const noexcept {
        const std::lock_guard lock(lock_);
        return written_;
    }

    /// Two thirds of a second at 48 kHz.
    static constexpr std::size_t capacity = 32768;

  private:
    mutable ShortLock lock_;
    std::uint64_t written_ = 0; // frames ever
    std::array<float, capacity> samples_{};
};

} // namespace quorbel
