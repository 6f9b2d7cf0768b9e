#pragma once

#include <cstdint>

namespace quorbel {

/// Linear ramp over a block, from `from` at its first frame to `to` at its last or only one.
class LinearRamp {
  public:
    LinearRamp(float from, float to, std::uint32_t frames) noexcept
        : from_(frames > 1 ? from : to), step_(to - from_),
          last_(frames > 1 ? static_cast<float>(frames - 1) : 1.0F) {}

    [[nodiscard]] float at(std::uint32_t frame) const noexcept {
        return from_ + step_ * (static_cast<float>(frame) / last_);
    }

    // Terms of `at`, for callers that compute several frames at once: from + step · (frame / last).
    [[nodiscard]] float from() const noexcept { return from_; }
    [[nodiscard]] float step() const noexcept { return step_; }
    [[nodiscard]] float last() const noexcept { return last_; }

  private:
    float from_;
    float step_;
    float last_;
};

} // namespace quorbel
