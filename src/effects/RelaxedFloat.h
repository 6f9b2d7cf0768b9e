#pragma once

#include <atomic>

namespace quorbel {

/// Lock-free float that one thread writes and any may read: state that is reset from outside, and
/// values published for display.
class RelaxedFloat {
  public:
    explicit RelaxedFloat(float value) : value_(value) {}

    [[nodiscard]] float load() const noexcept { return value_.load(std::memory_order_relaxed); }
    void store(float value) noexcept { value_.store(value, std::memory_order_relaxed); }

  private:
    std::atomic<float> value_;
};

} // namespace quorbel
