#pragma once

namespace quorbel {

/// The highest levels until the user clears them, and the limiter's work, as they are shown:
/// rounded, so that a value moves only where the movement is seen.
struct HeldLevels {
    float samplePeakDB = silenceDB;  ///< of the output, dB full scale, in tenths
    float truePeakDB = silenceDB;    ///< the same between the samples
    float largestReductionDB = 0.0F; ///< by the limiter, in tenths, not negative
    float limiterSeconds = 0.0F;     ///< of reduction in the last minute of sound, whole

    /// Of a level that is not measured, or of no sound.
    static constexpr float silenceDB = -120.0F;

    friend bool operator==(const HeldLevels &, const HeldLevels &) = default;
};

} // namespace quorbel
