#pragma once

#include "effects/cores/BassEnhancerCore.h"
#include "effects/cores/LinearRamp.h"
#include "effects/cores/SpatializerCore.h"
#include "effects/cores/VoiceEnhancerCore.h"

#include <cstdint>

namespace quorbel {

/// The work of four neighbours in the chain on one block, in this order: bass enhancer, voice
/// enhancer, widener, spatializer. A stage whose state is null is left out.
struct EnhancerPass {
    BassHarmonics bass;
    BassSections *bassSections = nullptr;
    float *bassMono = nullptr; ///< receives (left + right) / 2 of the bass enhancer's output

    VoiceClarity voice;
    VoiceSections *voiceSections = nullptr;

    LinearRamp width{1.0F, 1.0F, 1}; ///< of the widener, which comes with the spatializer
    SideDip dip;
    BiquadState *side = nullptr;

    [[nodiscard]] bool isVoiceAlone() const noexcept {
        return bassSections == nullptr && voiceSections != nullptr && side == nullptr;
    }
};

/// Renders all stages of `pass` in place, in one pass if that is faster: each stage is
/// latency-bound, so several take hardly longer than one. [render]
void enhance(const EnhancerPass &pass, float *left, float *right, std::uint32_t frames) noexcept;

/// Renders one stage after the other, as a reference and for the rest of a block; the results are
/// bit-identical.
void enhancePlainly(const EnhancerPass &pass, float *left, float *right,
                    std::uint32_t frames) noexcept;

} // namespace quorbel
