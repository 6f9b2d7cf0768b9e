#pragma once

#include "platform/dsp/VectorTargets.h"

#include <hwy/highway.h>

#include <cstdint>

namespace quorbel::bench {

/// While it lives, kernels run on one vector target instead of the machine's best.
class VectorTarget {
  public:
    /// Whether the machine has one of Highway's targets.
    [[nodiscard]] static bool isThere(std::int64_t target) {
        return (hwy::SupportedTargets() & target) != 0 && (HWY_TARGETS & target) != 0;
    }

    explicit VectorTarget(std::int64_t target) { use(target); }
    ~VectorTarget() { use(0); }
    VectorTarget(const VectorTarget &) = delete;
    VectorTarget &operator=(const VectorTarget &) = delete;

  private:
    /// 0 selects the best.
    static void use(std::int64_t target) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

} // namespace quorbel::bench
