#pragma once

#include "effects/cores/Kept.h"
#include "effects/cores/StereoSection.h"

#include <cstdint>

namespace quorbel {

/// A cut around 300 Hz and a boost around 3 kHz, mixed into the dry sound.
class VoiceEnhancerCore {
  public:
    /// `sampleRate` in Hz. Starts from silence. Not while processing.
    void prepare(float sampleRate) noexcept;

    /// Back to silence. [render]
    void clear() noexcept { mud_ = presence_ = {}; }

    /// In place. `mix` 0 to 1; `presenceDB` is a boost, `mudDB` a cut, both 0 or more. [render]
    void process(float *left, float *right, std::uint32_t frames, float mix, float presenceDB,
                 float mudDB) noexcept;

  private:
    float sampleRate_ = 48'000.0F;
    StereoSection mud_;
    Kept<BiquadCoefficients, float, float> mudCoefficients_;      ///< by sample rate and cut
    Kept<BiquadCoefficients, float, float> presenceCoefficients_; ///< by sample rate and boost
    StereoSection presence_; // its input is the mud filter's output
};

} // namespace quorbel
