#pragma once

#include "platform/threads/ShortLock.h"

#include <span>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// The newest mono samples of a tap: one thread writes them, another copies the newest at any time.
/// The lock is held for the copies only.
class SpectrumRing {
  public:
    /// `capacity` in samples, a power of two.
    explicit SpectrumRing(std::size_t capacity);

    /// Appends any number of samples; samples beyond the capacity are dropped, oldest first. [tap]
    void write(std::span<const float> samples) noexcept;

    /// Fills `into`, at most the capacity, with the newest samples in time order. Returns false and
    /// copies nothing if fewer were ever written. [main]
    [[nodiscard]] bool snapshot(std::span<float> into) const noexcept;

    /// Total samples written. [main]
    [[nodiscard]] std::int64_t written() const noexcept;

  private:
    [[nodiscard]] std::size_t slot(std::int64_t index) const noexcept {
        return static_cast<std::size_t>(index) & (storage_.size() - 1);
    }

    mutable ShortLock lock_; // guards what follows
    std::vector<float> storage_;
    std::int64_t writeIdx_ = 0; // samples ever written
};

} // namespace quorbel
