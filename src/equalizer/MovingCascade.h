#pragma once

#include "equalizer/StateVariableSection.h"

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Section with coefficients that move linearly within a step of a glide, except `scale`, which is
/// derived from them. Borrows all that it points to.
struct MovingSection {
    const SectionCoefficients *from = nullptr; ///< at the step's first frame
    const SectionCoefficients *to = nullptr;   ///< at the next step's; null while the section rests
    SectionState *left = nullptr;
    SectionState *right = nullptr;
};

/// Moving and resting sections in series, over a part of a step. [any]
struct MovingCascade {
    const MovingSection *sections = nullptr;
    std::size_t count = 0;
    std::uint32_t stepFrames = 1;   ///< length of the step
    std::uint32_t stepPosition = 0; ///< offset of the part in the step
};

/// Works in place with one section per lane, as processCascade; bit-identical to
/// processMovingPlainly.
void processMoving(const MovingCascade &cascade, float *left, float *right,
                   std::uint32_t frames) noexcept;

/// Plain reference: one section after the other.
void processMovingPlainly(const MovingCascade &cascade, float *left, float *right,
                          std::uint32_t frames) noexcept;

} // namespace quorbel
