#pragma once

#include <tuple>

namespace quorbel {

/// A result that is computed again only when its inputs have changed: most of a short block's time
/// would go into designing the filters of the block before once more. Belongs to one thread.
template <typename Result, typename... Inputs> class Kept {
  public:
    /// `compute(inputs...)`, of this call or of an earlier one with equal inputs.
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
