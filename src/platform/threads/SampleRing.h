#pragma once

#include "platform/threads/ShortLock.h"

#include <span>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// A ring of the newest mono samples for an analysis: one thread writes, another copies a part at
/// any time. Both hold the short lock for their copy only. [any], without other waits or allocation
/// after construction.
class SampleRing {
  public:
    /// `capacity` in samples, at least 1.
    explicit SampleRing(std::size_t capacity) : samples_(capacity) {}

    /// Appends any number of samples; the oldest beyond the capacity are dropped.
    void write(std::span<const float> samples) noexcept;
    /// Appends (left + right) / 2 for any number of frames.
    void writeMean(const float *left, const float *right, std::size_t frames) noexcept;

    /// Copies the newest samples in time order. Returns false and copies nothing if too few were
    /// ever written.
    [[nodiscard]] bool snapshot(std::span<float> samples) const noexcept;
    /// Copies the samples before sample `end`, counted from the first ever written. Returns false
    /// if any is missing.
    [[nodiscard]] bool snapshot(std::uint64_t end, std::span<float> samples) const noexcept;

    /// Total samples written.
    [[nodiscard]] std::uint64_t written() const noexcept;

  private:
    template <typename Fill> void append(std::size_t count, Fill fill) noexcept;
    bool copyBefore(std::uint64_t end, std::span<float> samples) const noexcept;

    mutable ShortLock lock_; // guards the members below
    std::vector<float> samples_;
    std::uint64_t written_ = 0;
};

} // namespace quorbel
