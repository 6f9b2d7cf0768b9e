#pragma once

#include "platform/dsp/EqualizerBandSettings.h"
#include "platform/dsp/StateVariableSection.h"

#include <array>

namespace quorbel {

/// One band ready to be run: the section, and what it takes to get there from another one by moving
/// gradually. Made off the audio thread, copied to it.
///
/// Sections move in the logarithms of their values. The prototypes are products of powers of gain,
/// frequency and Q, so the straight line between two logarithms is the band's own path in dB and
/// octaves, and of two bands in series that swap a boost for a cut the level stays between both
/// ends all the way.
struct BandDesign {
    enum LogValue { cutoff, damping, high, band, low, frequency, quality, logValueCount };
    using Logarithms = std::array<double, logValueCount>;

    bool active = false; ///< a flat band is not run at all; the rest means nothing then
    EqualizerFilterType type = EqualizerFilterType::parametric;
    SectionCoefficients section;
    Logarithms logarithms{};

    /// How far the frequency may move gradually, as |ln(f/f')|. A resonance that travelled further
    /// would be heard passing by what lies between, louder than before and after.
    double frequencyReach = 0.0;

    /// The same for Q: a resonance that is widened faster than it dies away swells first.
    double qualityReach = 0.0;

    /// In how many seconds the band's own ringing falls to 1/e.
    double decaySeconds = 0.0;

    [[nodiscard]] static BandDesign of(const EqualizerBandSettings &settings, double sampleRate);

    /// The flat band that a parametric band or shelf at `logarithms` grows from and shrinks to.
    [[nodiscard]] static Logarithms flattened(const Logarithms &logarithms);

    /// The section at a point of the way.
    [[nodiscard]] static SectionCoefficients sectionAt(const Logarithms &logarithms);
};

} // namespace quorbel
