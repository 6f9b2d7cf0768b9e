#pragma once

namespace quorbel {

/// What the stages publish for display. A stage that is missing reads neutral.
struct MeterReadings {
    float limiterReductionDB = 0.0F; ///< not negative
    float autoGainDB = 0.0F;
    float bassTrackedFrequency = 80.0F; ///< Hz
    float voiceConfidence = 0.0F;       ///< 0 to 1
};

} // namespace quorbel
