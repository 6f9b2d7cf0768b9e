#pragma once

#include "platform/threads/ShortLock.h"

#include <mutex>

namespace quorbel {

/// The cell through which the control side hands one parameter's value to the render side: written
/// by the unit's parameter tree, taken once per block. The lock is held for the one load or store
/// only.
///
/// Shared between the unit, its tree and its render blocks; whoever lives longest keeps it. [any]
/// but where tagged.
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

    /// Makes the value of this moment the one that is rendered with. [render]
    void take() noexcept { taken_ = value(); }
    [[nodiscard]] float taken() const noexcept { return taken_; } ///< [render]

  private:
    mutable ShortLock lock_;
    float value_;
    float taken_;
};

/// A switch counts as on at the middle of its range.
[[nodiscard]] constexpr bool isOn(float switchValue) { return switchValue >= 0.5F; }

/// The two adaptive switches count as on only above it.
[[nodiscard]] constexpr bool isAdaptiveOn(float switchValue) { return switchValue > 0.5F; }

} // namespace quorbel
