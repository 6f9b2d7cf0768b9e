#pragma once

#include "platform/threads/ShortLock.h"

#include <mutex>

namespace quorbel {

/// Carries a parameter's value from the control side, where the parameter tree writes it, to the
/// render block, which takes it once per block. The lock covers a single load or store.
///
/// Shared by the unit, its tree and its render blocks; the last owner frees it. [any] unless
/// tagged.
class AudioParameter {
  public:
    /// `value` is in the parameter's own unit (dB, percent, Hz; 0 or 1 for switches).
    explicit AudioParameter(float value) : value_(value), taken_(value) {}

    [[nodiscard]] float value() const noexcept {
        const std::lock_guard lock(lock_);
        return value_;
    }

    void setValue(float value) noexcept {
        const std::lock_guard lock(lock_);
        value_ = value;
    }

    /// Latches the current value for the block. [render]
    void take() noexcept { taken_ = value(); }
    [[nodiscard]] float taken() const noexcept { return taken_; } ///< [render]

  private:
    mutable ShortLock lock_;
    float value_;
    float taken_;
};

/// A switch is on from the middle of its range.
[[nodiscard]] constexpr bool isOn(float switchValue) { return switchValue >= 0.5F; }

/// The two adaptive switches are on only above the middle of their range.
[[nodiscard]] constexpr bool isAdaptiveOn(float switchValue) { return switchValue > 0.5F; }

} // namespace quorbel
