#pragma once

namespace quorbel {

/// The ranges of the equaliser's controls. Bands from files may lie beyond; they are shown as they
/// are until they are moved.
struct BandLimits {
    static constexpr double minFrequency = 20.0; ///< Hz
    static constexpr double maxFrequency = 20000.0;
    static constexpr double minGain = -12.0; ///< dB, of a band and of all together
    static constexpr double maxGain = 12.0;
    static constexpr double gainStep = 0.1;
    static constexpr double minQ = 0.1;
    static constexpr double maxQ = 20.0;
};

} // namespace quorbel
