#pragma once

#include "effects/cores/BassEnhancerCore.h"
#include "effects/cores/LinearRamp.h"
#include "effects/cores/SpatializerCore.h"
#include "effects/cores/VoiceEnhancerCore.h"

#include <cstdint>

namespace quorbel {

/// The work of the chain's neighbours bass enhancer, voice enhancer, widener and spatializer on one
/// block, in this order. A stage whose memory is null is left out.
struct EnhancerPass {
    BassHarmonics bass;
    BassSections *bassSections = nullptr;
    float *bassMono = nullptr; ///< receives (left + right) / 2 of the bass enhancer's output

    VoiceClarity voice;
    VoiceSections *voiceSections = nullptr;

    LinearRamp width{1.0F, 1.0F, 1}; ///< of the widener, which comes with the spatializer
    SideDip dip;
    BiquadState *side = nullptr;
};

/// Renders all stages of `pass` in place, in one pass if that is the faster way: each stage is
/// latency-bound, so several take hardly longer than one. [render]
void enhance(const EnhancerPass &pass, float *left, float *right, std::uint32_t frames) noexcept;

/// Renders one stage after the other, for comparison and for the rest of a block; the results are
/// equal bit by bit.
void enhancePlainly(const EnhancerPass &pass, float *left, float *right,
                    std::uint32_t frames) noexcept;

} // namespace quorbel
