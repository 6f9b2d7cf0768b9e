#pragma once

namespace quorbel {

/// How often the readings are taken.
inline constexpr double readOutSeconds = 0.1;

/// What the stages publish for display. A stage that is missing reads neutral.
struct MeterReadings {
    float limiterReductionDB = 0.0F; ///< not negative
    float autoGainDB = 0.0F;
    float bassTrackedFrequency = 80.0F; ///< Hz
    float voiceConfidence = 0.0F;       ///< 0 to 1

    friend bool operator==(const MeterReadings &, const MeterReadings &) = default;
};

/// The readings as they are shown: a value moves only when the movement is large enough to be seen,
/// because every one redraws a screen.
class PublishedReadings {
  public:
    [[nodiscard]] const MeterReadings &values() const { return values_; }

    /// Each takes the reading of the moment and returns whether the value shown has changed.
    bool updateLimiterReduction(float dB);
    bool updateAutoGain(float dB);
    bool updateBassTracking(float hertz);
    bool updateVoiceConfidence(float confidence);
    void update(const MeterReadings &now);

  private:
    MeterReadings values_;
};

} // namespace quorbel
