#pragma once

#include "effects/cores/StereoSection.h"

#include <cstdint>

namespace quorbel {

/// What the bass enhancer does to a block, once everything is designed: x becomes
/// (x + wet · highPass(tanh(drive · lowPass(x)) / drive)) / total.
struct BassHarmonics {
    BiquadCoefficients lowPass;
    BiquadCoefficients highPass;
    float drive = 1.0F;
    float wet = 0.0F;
    float total = 1.0F;
};

/// The filters' memories.
struct BassSections {
    StereoSection lowPass;
    StereoSection highPass;
};

/// In place. [render]
void addBassHarmonics(const BassHarmonics &harmonics, BassSections &sections, float *left,
                      float *right, std::uint32_t frames) noexcept;

/// The same written plainly, for comparison and for the rest of a block; the results are equal bit
/// by bit.
void addBassHarmonicsPlainly(const BassHarmonics &harmonics, BassSections &sections, float *left,
                             float *right, std::uint32_t frames) noexcept;

} // namespace quorbel
