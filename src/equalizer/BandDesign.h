#pragma once

#include "equalizer/EqualizerBandSettings.h"
#include "equalizer/StateVariableSection.h"

#include <array>

namespace quorbel {

/// Designed band: its section and the largest glides that may reach it. Made off the audio thread,
/// copied to it.
///
/// Sections glide in the logarithms of their values. The prototypes are products of powers of gain,
/// frequency and Q, so a straight line between two logarithms is a straight line in dB and octaves.
/// Example: where two bands in series swap a boost for a cut, the level stays between both ends.
struct BandDesign {
    enum LogValue { cutoff, damping, high, band, low, frequency, quality, logValueCount };
    using Logarithms = std::array<double, logValueCount>;

    bool active = false; ///< false: the band is flat and not run; the other fields have no meaning
    EqualizerFilterType type = EqualizerFilterType::parametric;
    SectionCoefficients section;
    Logarithms logarithms{};

    /// Largest frequency change of a glide, |ln(f/f')|. In a larger one the resonance would audibly
    /// sweep over the frequencies between, louder than before and after.
    double frequencyReach = 0.0;

    /// Largest change of Q in a glide, likewise: widening a resonance faster than it decays makes
    /// it swell.
    double qualityReach = 0.0;

    /// Time constant (to 1/e) of the band's ringing, in seconds.
    double decaySeconds = 0.0;

    [[nodiscard]] static BandDesign of(const EqualizerBandSettings &settings, double sampleRate);

    /// Returns the flat band from and to which a parametric band or shelf at `logarithms` fades.
    [[nodiscard]] static Logarithms flattened(const Logarithms &logarithms);

    /// Returns the section at a point of the glide.
    [[nodiscard]] static SectionCoefficients sectionAt(const Logarithms &logarithms);
};

} // namespace quorbel
