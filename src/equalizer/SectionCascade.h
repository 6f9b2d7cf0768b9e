#pragma once

#include "equalizer/StateVariableSection.h"

#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Sections in series over two channels, each with a state per channel; all three arrays hold
/// `count` elements. Works in place. [any]
struct SectionCascade {
    const SectionCoefficients *sections = nullptr;
    SectionState *left = nullptr;
    SectionState *right = nullptr;
    std::size_t count = 0;
};

/// Plain reference: one section after the other.
void processCascadePlainly(const SectionCascade &cascade, float *left, float *right,
                           std::uint32_t frames) noexcept;

/// Equals the reference to within rounding, more than twenty times as fast. A section is
/// latency-bound by its own previous frame, so every vector lane runs one section, a few frames
/// behind the previous lane. The lanes start and stop within the call: no delay is added, and the
/// result does not depend on the lengths of the calls.
void processCascade(const SectionCascade &cascade, float *left, float *right,
                    std::uint32_t frames) noexcept;

} // namespace quorbel
