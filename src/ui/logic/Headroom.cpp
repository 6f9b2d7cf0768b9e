#include "ui/logic/Headroom.h"

#include "effects/ToneEqualizer.h"
#include "equalizer/SectionDesign.h"
#include "settings/interchange/BandResponse.h"
#include "ui/logic/NumberFormat.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorbel {

namespace {

using Sections = std::vector<StateVariableDesign>;

void addSections(const ParametricEqualizerNode &node, double sampleRate, Sections &sections) {
    for (std::size_t index = 0; index < node.bandCount(); ++index)
        if (const auto section = designBand(node.band(index), sampleRate))
            sections.push_back(*section);
}

double responsePower(const Sections &sections, double cyclesPerSample) {
    double power = 1.0;
    for (const auto &section : sections)
        power *= section.power(cyclesPerSample);
    return power;
}

} // namespace

double highestPointDB(EQProcessor &eq, const SpatialConfig &spatial, double sampleRate) {
    ToneEqualizer tone;
    tone.setGainsDB({spatial.toneBassDB, spatial.toneMidDB, spatial.toneTrebleDB});
    Sections sections;
    addSections(eq.eq(), sampleRate, sections);
    addSections(tone.node(), sampleRate, sections);

    // The grid resolves bands of the highest Q, so that only one maximum lies between the
    // neighbours of the highest point. Golden-section search finds it.
    constexpr std::size_t pointCount = 721;
    std::size_t highest = 0;
    double highestPower = 0.0;
    for (std::size_t point = 0; point < pointCount; ++point) {
        const double power =
            responsePower(sections, audibleFrequency(point, pointCount) / sampleRate);
        if (power > highestPower) {
            highestPower = power;
            highest = point;
        }
    }
    double low = std::log(audibleFrequency(highest > 0 ? highest - 1 : 0, pointCount));
    double high = std::log(audibleFrequency(std::min(highest + 1, pointCount - 1), pointCount));
    constexpr double goldenSection = 0.6180339887498949;
    for (int step = 0; step < 20; ++step) {
        const double left = high - goldenSection * (high - low);
        const double right = low + goldenSection * (high - low);
        const double leftPower = responsePower(sections, std::exp(left) / sampleRate);
        const double rightPower = responsePower(sections, std::exp(right) / sampleRate);
        (leftPower < rightPower ? low : high) = leftPower < rightPower ? left : right;
        highestPower = std::max({highestPower, leftPower, rightPower});
    }
    return decibelsOfPower(highestPower) + static_cast<double>(eq.totalGainDB());
}

double excessDB(const HeldLevels &levels, const MixerConfig &mixer) {
    return shownValue(
        std::max(0.0F, mixer.limiterEnabled ? levels.largestReductionDB : levels.samplePeakDB));
}

std::string heldPeakText(const HeldLevels &levels) {
    std::string text = heldSamplePeakText(levels);
    if (levels.samplePeakDB <= HeldLevels::silenceDB)
        return text;
    return text + ", " + signedText(static_cast<double>(levels.truePeakDB), 1) + " dBTP";
}

std::string heldSamplePeakText(const HeldLevels &levels) {
    if (levels.samplePeakDB <= HeldLevels::silenceDB)
        return "Peak –";
    return "Peak " + signedText(static_cast<double>(levels.samplePeakDB), 1) + " dBFS";
}

std::string limiterTimeText(const HeldLevels &levels) {
    if (levels.limiterSeconds == 0.0F)
        return {};
    return fixedText(static_cast<double>(levels.limiterSeconds), 0) + " s of the last minute";
}

} // namespace quorbel
