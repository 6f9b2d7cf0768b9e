#pragma once

namespace quorbel {

/// The numbers are the audio framework's.
enum class EqualizerFilterType {
    parametric = 0,
    lowPass = 1,
    highPass = 2,
    lowShelf = 7,
    highShelf = 8
};

/// True for the types with a gain, which are flat at 0 dB: parametric bands and shelves, not
/// passes.
[[nodiscard]] constexpr bool hasGain(EqualizerFilterType type) {
    return type != EqualizerFilterType::lowPass && type != EqualizerFilterType::highPass;
}

/// Settings of one band. Any value is accepted: the design clamps it to its range (see
/// SectionDesign.h), and a band with a NaN is flat.
struct EqualizerBandSettings {
    EqualizerFilterType filterType = EqualizerFilterType::parametric;
    float frequencyHz = 1000.0F;
    float bandwidthOctaves = 1.0F; ///< octaves; shelves and passes take the equivalent Q
    float gainDB = 0.0F;           ///< parametric bands and shelves
    bool bypass = true;

    friend bool operator==(const EqualizerBandSettings &, const EqualizerBandSettings &) = default;
};

} // namespace quorbel
