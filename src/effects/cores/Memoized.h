#pragma once

#include <tuple>

namespace quorbel {

/// Caches a result until its inputs change, because designing filters would dominate a short block.
/// Belongs to one thread.
template <typename Result, typename... Inputs> class Memoized {
  public:
    /// Returns `compute(inputs...)`; calls it only if the inputs have changed.
    template <typename Compute>
    const Result &of(const Compute &compute, const Inputs &...inputs) noexcept {
        const std::tuple<Inputs...> now(inputs...);
        if (!isComputed_ || inputs_ != now) {
            result_ = compute(inputs...);
            inputs_ = now;
            isComputed_ = true;
        }
        return result_;
    }

  private:
    bool isComputed_ = false;
    std::tuple<Inputs...> inputs_{};
    Result result_{};
};

} // namespace quorbel
