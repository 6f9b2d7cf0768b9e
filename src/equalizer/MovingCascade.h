#pragma once

#include "equalizer/StateVariableSection.h"

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// A section whose coefficients move linearly within a step of a glide, all but `scale`, which
/// follows from them. What it points to is its owner's.
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
    std::uint32_t stepFrames = 1;   ///< the length of the step
    std::uint32_t stepPosition = 0; ///< where in it the part begins
};

/// In place. Every section in a lane of its own, as processCascade; equal bit by bit to
/// processMovingPlainly.
void processMoving(const MovingCascade &cascade, float *left, float *right,
                   std::uint32_t frames) noexcept;

/// Section by section, for comparison.
void processMovingPlainly(const MovingCascade &cascade, float *left, float *right,
                          std::uint32_t frames) noexcept;

} // namespace quorbel
