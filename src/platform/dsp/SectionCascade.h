#pragma once

#include "platform/dsp/StateVariableSection.h"

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Sections in series over two channels, each with its own memory; all three arrays hold `count`
/// elements. In place. [any]
struct SectionCascade {
    const SectionCoefficients *sections = nullptr;
    SectionState *left = nullptr;
    SectionState *right = nullptr;
    std::size_t count = 0;
};

/// Section by section, as it would be explained: what the fast one is measured against.
void processCascadePlainly(const SectionCascade &cascade, float *left, float *right,
                           std::uint32_t frames) noexcept;

/// The same to within rounding, more than twenty times as fast. One section has to wait for its own
/// last frame, but not for the other sections: every lane of a vector runs one section, a few
/// frames behind the lane before it. The lanes start and stop within the call, so no delay is
/// added, and the result does not depend on how the sound is cut into calls.
void processCascade(const SectionCascade &cascade, float *left, float *right,
                    std::uint32_t frames) noexcept;

} // namespace quorbel
