#pragma once

#include "effects/cores/BassEnhancerCore.h"
#include "effects/cores/LinearRamp.h"
#include "effects/cores/SpatializerCore.h"
#include "effects/cores/VoiceEnhancerCore.h"

#include <cstdint>

namespace quorbel {

/// Settings and states of four neighbours in the chain for one block: bass enhancer, voice
/// enhancer, widener, spatializer. A null state leaves its stage out.
struct EnhancerPass {
    BassHarmonics bass;
    BassSections *bassSections = nullptr;
    float *bassMono = nullptr; ///< receives (left + right) / 2 of the bass enhancer's output

    VoiceClarity voice;
    VoiceSections *voiceSections = nullptr;

    LinearRamp width{1.0F, 1.0F, 1}; ///< of the widener; used only with the spatializer
    SideDip dip;
    BiquadState *side = nullptr;

    [[nodiscard]] bool isVoiceAlone() const noexcept {
        return bassSections == nullptr && voiceSections != nullptr && side == nullptr;
    }
};

/// Renders all stages of `pass` in place. The stages are latency-bound, so one joint pass overlaps
/// them where that is faster. [render]
void enhance(const EnhancerPass &pass, float *left, float *right, std::uint32_t frames) noexcept;

/// Plain version, as a reference: one stage after the other; the results are bit-identical.
void enhancePlainly(const EnhancerPass &pass, float *left, float *right,
                    std::uint32_t frames) noexcept;

} // namespace quorbel
