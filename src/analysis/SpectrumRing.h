#pragma once

#include "platform/threads/ShortLock.h"

#include <span>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// The newest mono samples of a tap: one thread writes all that comes, another copies the end of it
/// when it likes. The lock is held for the copies only.
class SpectrumRing {
  public:
    /// `capacity` in samples, a power of two.
    explicit SpectrumRing(std::size_t capacity);

    /// Appends `samples`, any number of them; what is older than the capacity is forgotten. [tap]
    void write(std::span<const float> samples) noexcept;

    /// Fills `into`, at most the capacity, with the newest samples in time order. False, and
    /// nothing copied, if fewer were ever written. [main]
    [[nodiscard]] bool snapshot(std::span<float> into) const noexcept;

    /// Samples ever written. [main]
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
