#pragma once

#include "effects/cores/Biquad.h"

#include <cstdint>

namespace quorbel {

/// One second-order section for both channels, on interleaved samples (left, right, left, ...).
struct StereoSection {
    BiquadState left;
    BiquadState right;
};

/// What goes through a section: `frames` stereo frames from `input` to `output`, which may be the
/// same.
struct SectionRun {
    const BiquadCoefficients &coefficients;
    StereoSection &section;
    const float *input;
    float *output;
    std::uint32_t frames;
};

/// Both channels side by side. [render]
void processSection(const SectionRun &run) noexcept;

/// Two sections side by side, for the time of one: a section waits for its own last output most of
/// the time. The second may read what the first has written at least eight frames before.
/// [render]
void processSections(const SectionRun &first, const SectionRun &second) noexcept;

/// Planar to interleaved.
inline void interleave(const float *left, const float *right, std::uint32_t frames,
                       float *interleaved) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        interleaved[2 * i] = left[i];
        interleaved[2 * i + 1] = right[i];
    }
}

} // namespace quorbel
