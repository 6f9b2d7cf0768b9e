#pragma once

#include "platform/dsp/VectorTargets.h"

#include <hwy/highway.h>

#include <cstdint>

namespace quorbel::bench {

/// Restricts kernels to one vector target instead of the best during its lifetime.
class VectorTarget {
  public:
    /// Returns whether the machine and this build support a Highway target.
    [[nodiscard]] static bool isThere(std::int64_t target) {
        return (hwy::SupportedTargets() & target) != 0 && (HWY_TARGETS & target) != 0;
    }

    explicit VectorTarget(std::int64_t target) { use(target); }
    ~VectorTarget() { use(0); }
    VectorTarget(const VectorTarget &) = delete;
    VectorTarget &operator=(const VectorTarget &) = delete;

  private:
    /// Selects a target; 0 selects the best.
    static void use(std::int64_t target) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

} // namespace quorbel::bench
