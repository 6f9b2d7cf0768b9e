#pragma once

#include <algorithm>
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

    /// Starts a transition from the current values to `values`.
    void retarget(const Values &values) noexcept {
        if (remainingSteps_ == 0)
            beginHistory();
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
        const bool isFull = historySteps_ == averageSteps;
        Values &first = firstHistory_[position_];
        Values &second = secondHistory_[position_];
        const Values &oldFirst = isFull ? first : start_;
        const Values &oldSecond = isFull ? second : start_;
        for (std::size_t i = 0; i < N; ++i) {
            firstSum_[i] += target_[i] - oldFirst[i];
            first[i] = target_[i];
            const double average = firstSum_[i] / averageSteps;
            secondSum_[i] += average - oldSecond[i];
            second[i] = average;
            values_[i] = secondSum_[i] / averageSteps;
        }
        position_ = (position_ + 1) % averageSteps;
        historySteps_ = std::min(historySteps_ + 1, averageSteps);
        if (--remainingSteps_ == 0)
            values_ = target_;
    }

  private:
    /// Treats the current values as the whole history. Filling the histories would cost as much as
    /// a block when ten bands start moving at once.
    void beginHistory() noexcept {
        start_ = values_;
        historySteps_ = 0;
        for (std::size_t i = 0; i < N; ++i)
            firstSum_[i] = secondSum_[i] = values_[i] * averageSteps;
    }

    Values target_{};
    Values values_{};
    int remainingSteps_ = 0;
    int historySteps_ = 0; // valid steps of the histories; the rest equal `start_`
    Values start_{};
    std::array<Values, averageSteps> firstHistory_{};
    std::array<Values, averageSteps> secondHistory_{};
    Values firstSum_{};
    Values secondSum_{};
    std::size_t position_ = 0;
};

} // namespace quorbel
