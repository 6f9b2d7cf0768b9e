#include "effects/cores/AutoGainCore.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

namespace {

constexpr float trimSeconds = 0.03F;
constexpr float levelSeconds = 0.4F;
constexpr float gainSeconds = 3.0F;

} // namespace

void AutoGainCore::prepare(float sampleRate, float trimTarget) noexcept {
    const auto smoothing = [sampleRate](float seconds) {
        return std::exp(-1.0F / (seconds * std::max(sampleRate, 1.0F)));
    };
    leveller_.keepLevel = smoothing(levelSeconds);
    leveller_.keepGain = smoothing(gainSeconds);
    leveller_.keepTrim = smoothing(trimSeconds);
    trim_ = trimTarget;
    meanSquare_ = 0.0F;
}

void AutoGainCore::trim(float *left, float *right, std::uint32_t frames,
                        float trimTarget) noexcept {
    const float keep = leveller_.keepTrim;
    float trim = trim_;
    for (std::uint32_t i = 0; i < frames; ++i) {
        trim = (1.0F - keep) * trimTarget + keep * trim;
        left[i] *= trim;
        right[i] *= trim;
    }
    trim_ = trim;
}

float AutoGainCore::level(float *left, float *right, std::uint32_t frames, float gainDB,
                          float targetDB, float trimTarget, CrossfeedBlock *crossfeed) noexcept {
    leveller_.target = target_.of([](float dB) { return std::pow(10.0F, dB / 20.0F); }, targetDB);
    leveller_.trimTarget = trimTarget;
    LevellerState state{
        .meanSquare = meanSquare_, .gain = std::pow(10.0F, gainDB / 20.0F), .trim = trim_};
    if (crossfeed != nullptr)
        runCrossfedLeveller(*crossfeed, leveller_, state, left, right, frames);
    else
        runLeveller(leveller_, state, left, right, frames);
    trim_ = state.trim;
    meanSquare_ = state.meanSquare;
    return 20.0F * std::log10(std::max(state.gain, 0.000001F));
}

} // namespace quorbel
