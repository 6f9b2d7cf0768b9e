#pragma once

#include "effects/cores/Memoized.h"
#include "effects/cores/StereoSection.h"

#include <cstdint>

namespace quorbel {

/// The voice enhancer's coefficients for one block: x becomes x + mix · (presence(mud(x)) − x).
struct VoiceClarity {
    BiquadCoefficients mud;
    BiquadCoefficients presence;
    float mix = 0.0F;
};

/// The filters' states.
struct VoiceSections {
    StereoSection mud;
    StereoSection presence;
};

/// Works in place. [render]
void clarify(const VoiceClarity &clarity, VoiceSections &sections, float *left, float *right,
             std::uint32_t frames) noexcept;

/// Bit-identical to `clarify`; the recursions are latency-bound, so all four run side by side.
/// [render]
void clarifySideBySide(const VoiceClarity &clarity, VoiceSections &sections, float *left,
                       float *right, std::uint32_t frames) noexcept;

/// Mixes a cut around 300 Hz and a boost around 3 kHz into the dry sound.
class VoiceEnhancerCore {
  public:
    /// `sampleRate` in Hz. Starts from silence. Not while processing.
    void prepare(float sampleRate) noexcept;

    /// Resets to silence. [render]
    void clear() noexcept { sections_ = {}; }

    /// `mix` 0 to 1; `presenceDB` is a boost, `mudDB` a cut, both 0 or more. [render]
    [[nodiscard]] VoiceClarity designed(float mix, float presenceDB, float mudDB) noexcept;

    [[nodiscard]] VoiceSections &sections() noexcept { return sections_; } ///< [render]

  private:
    float sampleRate_ = 48'000.0F;
    VoiceSections sections_;
    Memoized<BiquadCoefficients, float, float> mudCoefficients_;      ///< by sample rate and cut
    Memoized<BiquadCoefficients, float, float> presenceCoefficients_; ///< by sample rate and boost
};

} // namespace quorbel
