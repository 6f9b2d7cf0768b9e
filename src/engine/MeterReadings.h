#pragma once

namespace quorbel {

/// Interval of the readings, in seconds.
inline constexpr double readOutSeconds = 0.1;

/// Values that the stages publish for display. A missing stage has its neutral value.
struct MeterReadings {
    float limiterReductionDB = 0.0F; ///< not negative
    float autoGainDB = 0.0F;
    float bassTrackedFrequency = 80.0F; ///< Hz
    float voiceConfidence = 0.0F;       ///< 0 to 1

    friend bool operator==(const MeterReadings &, const MeterReadings &) = default;
};

/// Displayed readings. Every change redraws a screen, so a value changes only by visible amounts.
class PublishedReadings {
  public:
    [[nodiscard]] const MeterReadings &values() const { return values_; }

    /// Each takes a new reading; returns true if the displayed value has changed.
    bool updateLimiterReduction(float dB);
    bool updateAutoGain(float dB);
    bool updateBassTracking(float hertz);
    bool updateVoiceConfidence(float confidence);
    void update(const MeterReadings &now);

  private:
    MeterReadings values_;
};

} // namespace quorbel
