#include "effects/cores/AutoGainCore.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

namespace {

constexpr float trimSeconds = 0.03F;
constexpr float levelSeconds = 0.4F;
constexpr float gainSeconds = 3.0F;
constexpr float gateLevel = 0.0056234F; // −45 dBFS
constexpr float smallestGain = 0.25F;   // −12 dB
constexpr float largestGain = 4.0F;     // +12 dB

} // namespace

void AutoGainCore::prepare(float sampleRate, float trimTarget) noexcept {
    sampleRate_ = sampleRate;
    trim_ = trimTarget;
    meanSquare_ = 0.0F;
}

float AutoGainCore::smoothing(float seconds) const noexcept {
    return std::exp(-1.0F / (seconds * std::max(sampleRate_, 1.0F)));
}

void AutoGainCore::trim(float *left, float *right, std::uint32_t frames,
                        float trimTarget) noexcept {
    const float keep = smoothing(trimSeconds);
    float trim = trim_;
    for (std::uint32_t i = 0; i < frames; ++i) {
        trim = (1.0F - keep) * trimTarget + keep * trim;
        left[i] *= trim;
        right[i] *= trim;
    }
    trim_ = trim;
}

float AutoGainCore::level(float *left, float *right, std::uint32_t frames, float gainDB,
                          float targetDB, float trimTarget) noexcept {
    const float keepTrim = smoothing(trimSeconds);
    const float keepLevel = smoothing(levelSeconds);
    const float keepGain = smoothing(gainSeconds);
    const float target = std::pow(10.0F, targetDB / 20.0F);
    float trim = trim_;
    float meanSquare = meanSquare_;
    float gain = std::pow(10.0F, gainDB / 20.0F);

    for (std::uint32_t i = 0; i < frames; ++i) {
        const float power = left[i] * left[i] + right[i] * right[i];
        meanSquare = keepLevel * meanSquare + (1.0F - keepLevel) * 0.5F * power;
        const float rms = std::sqrt(meanSquare);
        if (rms > gateLevel) {
            const float desired = std::clamp(target / rms, smallestGain, largestGain);
            gain = keepGain * gain + (1.0F - keepGain) * desired;
        }
        trim = (1.0F - keepTrim) * trimTarget + keepTrim * trim;
        left[i] = trim * (left[i] * gain);
        right[i] = trim * (right[i] * gain);
    }
    trim_ = trim;
    meanSquare_ = meanSquare;
    return 20.0F * std::log10(std::max(gain, 0.000001F));
}

} // namespace quorbel
