#include "engine/MeterReadings.h"

#include <cmath>

namespace quorbel {
namespace {

constexpr float levelStepDB = 0.05F;
constexpr float frequencyStepHz = 0.0F;
constexpr float confidenceStep = 0.02F;

bool move(float &shown, float now, float step) {
    if (!(std::abs(now - shown) > step))
        return false;
    shown = now + 0.0F; // turns -0.0, which prints with its sign, into 0.0
    return true;
}

} // namespace

bool PublishedReadings::updateLimiterReduction(float dB) {
    return move(values_.limiterReductionDB, dB, levelStepDB);
}

bool PublishedReadings::updateAutoGain(float dB) {
    return move(values_.autoGainDB, dB, levelStepDB);
}

bool PublishedReadings::updateBassTracking(float hertz) {
    return move(values_.bassTrackedFrequency, hertz, frequencyStepHz);
}

bool PublishedReadings::updateVoiceConfidence(float confidence) {
    return move(values_.voiceConfidence, confidence, confidenceStep);
}

void PublishedReadings::update(const MeterReadings &now) {
    updateLimiterReduction(now.limiterReductionDB);
    updateAutoGain(now.autoGainDB);
    updateBassTracking(now.bassTrackedFrequency);
    updateVoiceConfidence(now.voiceConfidence);
}

} // namespace quorbel
