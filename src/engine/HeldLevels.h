#pragma once

namespace quorbel {

/// Highest levels since the user cleared them, and the limiter's activity; rounded to the displayed
/// precision.
struct HeldLevels {
    float samplePeakDB = silenceDB;  ///< of the output, dB full scale, in tenths
    float truePeakDB = silenceDB;    ///< the same for the true peak
    float largestReductionDB = 0.0F; ///< by the limiter, in tenths, not negative
    float limiterSeconds = 0.0F;     ///< whole seconds of reduction in the last minute of sound

    /// Level of silence and of an unmeasured peak.
    static constexpr float silenceDB = -120.0F;

    friend bool operator==(const HeldLevels &, const HeldLevels &) = default;
};

} // namespace quorbel
