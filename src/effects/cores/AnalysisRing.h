#pragma once

#include "platform/threads/ShortLock.h"

#include <span>

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace quorbel {

/// The newest 8192 frames of a unit's input, mixed to mono, on their way from the render thread to
/// an analysis. Both sides hold the short lock for their copy only.
class AnalysisRing {
  public:
    /// Appends (left + right) / 2. [render]
    void feed(const float *left, const float *right, std::uint32_t frames) noexcept {
        const std::lock_guard lock(lock_);
        for (std::uint32_t i = 0; i < frames; ++i)
            samples_[static_cast<std::size_t>(written_ + i) % capacity] =
                (left[i] + right[i]) * 0.5F;
        written_ += frames;
    }

    /// Copies the newest samples in the order of time; false, and nothing copied, if fewer were
    /// ever written. At most `capacity`. [analysis]
    [[nodiscard]] bool snapshot(std::span<float> newest) const noexcept {
        const std::lock_guard lock(lock_);
        if (written_ < newest.size())
            return false;
        const std::uint64_t begin = written_ - newest.size();
        for (std::size_t i = 0; i < newest.size(); ++i)
            newest[i] = samples_[static_cast<std::size_t>(begin + i) % capacity];
        return true;
    }

    static constexpr std::size_t capacity = 8192;

  private:
    mutable ShortLock lock_;
    std::uint64_t written_ = 0; // frames ever
    std::array<float, capacity> samples_{};
};

} // namespace quorbel
