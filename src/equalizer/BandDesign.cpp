#include "equalizer/BandDesign.h"

#include "equalizer/AnalogPrototype.h"
#include "equalizer/SectionDesign.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

// Replaces log(0) in the numerator of a high pass: far below the smallest 32-bit float.
constexpr double logOfZero = -150.0;

double logOrZero(double value) {
    return value > 0.0 ? std::max(std::log(value), logOfZero) : logOfZero;
}

// Halfway through a glide of r·d in ln f, a resonance of damping d is off centre and loses gain:
// less than 0.5 dB at r = 0.3.
constexpr double reachPerDamping = 0.3;
constexpr double longestReach = 0.35;

// Measured: Q falling by the factor e^r within a glide lifts a ringing resonance by about r · 0.5
// dB · (decay in ms); a change of 5 % is always allowed.
constexpr double qualityReachPerRate = 0.0012;
constexpr double shortestQualityReach = 0.05;
constexpr double longestQualityReach = 0.4;

} // namespace

BandDesign BandDesign::of(const EqualizerBandSettings &settings, double sampleRate) {
    BandDesign result;
    const auto design = designBand(settings, sampleRate);
    if (!design)
        return result;
    result.active = true;
    result.type = settings.filterType;
    result.section = SectionCoefficients(*design);
    result.logarithms = {std::log(design->cutoff),
                         std::log(design->damping),
                         logOrZero(design->high),
                         logOrZero(design->band),
                         logOrZero(design->low),
                         0.0,
                         0.0};
    result.logarithms[frequency] = std::log(clampedFrequencyHz(settings.frequencyHz, sampleRate));
    result.logarithms[quality] = std::log(clampedQuality(settings.bandwidthOctaves));
    double narrowest = design->damping;
    if (hasGain(result.type))
        narrowest = std::min(narrowest, design->band / std::sqrt(design->high * design->low));
    const double radiansPerSecond = 2.0 * sampleRate * std::atan(design->cutoff);
    result.decaySeconds = 2.0 / (design->damping * radiansPerSecond);
    result.qualityReach = std::clamp(qualityReachPerRate / result.decaySeconds,
                                     shortestQualityReach, longestQualityReach);
    result.frequencyReach = std::min(reachPerDamping * narrowest, longestReach);
    return result;
}

BandDesign::Logarithms BandDesign::flattened(const Logarithms &logarithms) {
    Logarithms result = logarithms;
    result[high] = 0.0;
    result[band] = logarithms[damping];
    result[low] = 0.0;
    return result;
}

SectionCoefficients BandDesign::sectionAt(const Logarithms &logarithms) {
    return SectionCoefficients({.cutoff = std::exp(logarithms[cutoff]),
                                .damping = std::exp(logarithms[damping]),
                                .high = std::exp(logarithms[high]),
                                .band = std::exp(logarithms[band]),
                                .low = std::exp(logarithms[low])});
}

} // namespace quorbel
