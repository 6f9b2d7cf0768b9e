#pragma once

#include <array>
#include <cstddef>

namespace quorbel {

/// Smooths N values by two moving averages of `averageSteps` steps in series: a jump becomes an
/// S-curve over twice that many steps, and jumps during it add up to one smooth curve. (A ramp
/// restarted at every jump has corners; a control dragged at 100 Hz makes them audible as a buzz.)
/// A value stays within the range of its targets.
template <std::size_t N> class Glide {
  public:
    using Values = std::array<double, N>;
    static constexpr int averageSteps = 30;

    /// Jumps to `values`.
    void settle(const Values &values) noexcept {
        target_ = values_ = values;
        remainingSteps_ = 0;
    }

    /// Starts towards `values` from the current ones.
    void retarget(const Values &values) noexcept {
        if (remainingSteps_ == 0)
            fillHistory();
        target_ = values;
        remainingSteps_ = 2 * averageSteps;
    }

    [[nodiscard]] bool isSettled() const noexcept { return remainingSteps_ == 0; }
    [[nodiscard]] const Values &target() const noexcept { return target_; }
    [[nodiscard]] const Values &values() const noexcept { return values_; }

    /// Advances one step. The last step reaches the target exactly.
    void advance() noexcept {
        if (remainingSteps_ == 0)
            return;
        for (std::size_t i = 0; i < N; ++i) {
            firstSum_[i] += target_[i] - firstHistory_[position_][i];
            firstHistory_[position_][i] = target_[i];
            const double average = firstSum_[i] / averageSteps;
            secondSum_[i] += average - secondHistory_[position_][i];
            secondHistory_[position_][i] = average;
            values_[i] = secondSum_[i] / averageSteps;
        }
        position_ = (position_ + 1) % averageSteps;
        if (--remainingSteps_ == 0)
            values_ = target_;
    }

  private:
    void fillHistory() noexcept {
        firstHistory_.fill(values_);
        secondHistory_.fill(values_);
        for (std::size_t i = 0; i < N; ++i)
            firstSum_[i] = secondSum_[i] = values_[i] * averageSteps;
    }

    Values target_{};
    Values values_{};
    int remainingSteps_ = 0;
    std::array<Values, averageSteps> firstHistory_{};
    std::array<Values, averageSteps> secondHistory_{};
    Values firstSum_{};
    Values secondSum_{};
    std::size_t position_ = 0;
};

} // namespace quorbel
