#pragma once

#include "effects/cores/BassHarmonics.h"
#include "effects/cores/Kept.h"

#include <cstdint>

namespace quorbel {

/// Makes the bass below a crossover heard on speakers that cannot play it: its harmonics, from a
/// tanh shaper, are kept above 1.5 times the crossover and mixed in.
class BassEnhancerCore {
  public:
    /// `sampleRate` in Hz. Starts from silence. Not while processing.
    void prepare(float sampleRate) noexcept;

    /// Back to silence.
    void clear() noexcept { sections_ = {}; }

    /// In place. `amount` counts from 0 to 1 and is limited to that; `drive` is 1 or more. At
    /// amount 0 the sound stays as it is while the filters keep running. [render]
    void process(float *left, float *right, std::uint32_t frames, float amount, float drive,
                 float crossoverHz) noexcept;

  private:
    struct Filters {
        BiquadCoefficients lowPass;
        BiquadCoefficients highPass;
    };

    float sampleRate_ = 48'000.0F;
    BassSections sections_;
    Kept<Filters, float, float> filters_; ///< by crossover and sample rate
};

} // namespace quorbel
