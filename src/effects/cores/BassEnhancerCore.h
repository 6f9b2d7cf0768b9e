#pragma once

#include "effects/cores/Memoized.h"
#include "effects/cores/StereoSection.h"

#include <cstdint>

namespace quorbel {

/// The bass enhancer's coefficients for one block: x becomes (x + wet · highPass(tanh(drive ·
/// lowPass(x)) / drive)) / total.
struct BassHarmonics {
    BiquadCoefficients lowPass;
    BiquadCoefficients highPass;
    float drive = 1.0F;
    float wet = 0.0F;
    float total = 1.0F;
};

/// The filters' states.
struct BassSections {
    StereoSection lowPass;
    StereoSection highPass;
};

/// Works in place. [render]
void addBassHarmonics(const BassHarmonics &harmonics, BassSections &sections, float *left,
                      float *right, std::uint32_t frames) noexcept;

/// Makes bass below a crossover audible on speakers that cannot play it: mixes in the harmonics of
/// a tanh shaper, kept above 1.5 times the crossover.
class BassEnhancerCore {
  public:
    /// `sampleRate` in Hz. Starts from silence. Not while processing.
    void prepare(float sampleRate) noexcept;

    /// Resets to silence.
    void clear() noexcept { sections_ = {}; }

    /// `amount` is clamped to 0 to 1; `drive` is 1 or more. At amount 0 the sound is unchanged, but
    /// the filters keep running. [render]
    [[nodiscard]] BassHarmonics designed(float amount, float drive, float crossoverHz) noexcept;

    [[nodiscard]] BassSections &sections() noexcept { return sections_; } ///< [render]

  private:
    struct Filters {
        BiquadCoefficients lowPass;
        BiquadCoefficients highPass;
    };

    float sampleRate_ = 48'000.0F;
    BassSections sections_;
    Memoized<Filters, float, float> filters_; ///< by crossover and sample rate
};

} // namespace quorbel
