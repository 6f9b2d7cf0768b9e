#pragma once

namespace quorbel {

/// The numbers are the platform's own.
enum class EqualizerFilterType {
    parametric = 0,
    lowPass = 1,
    highPass = 2,
    lowShelf = 7,
    highShelf = 8
};

/// Parametric bands and shelves are flat at 0 dB and have a gain; passes have none.
[[nodiscard]] constexpr bool hasGain(EqualizerFilterType type) {
    return type != EqualizerFilterType::lowPass && type != EqualizerFilterType::highPass;
}

/// One band as its user sets it. Any value is accepted; what is out of range is clamped when the
/// band is designed (see SectionDesign.h), and a band with a NaN in it is flat.
struct EqualizerBandSettings {
    EqualizerFilterType filterType = EqualizerFilterType::parametric;
    float frequencyHz = 1000.0F;
    float bandwidthOctaves =
        1.0F;            ///< acts on every type: shelves and passes take the Q it stands for
    float gainDB = 0.0F; ///< parametric bands and shelves
    bool bypass = true;

    friend bool operator==(const EqualizerBandSettings &, const EqualizerBandSettings &) = default;
};

} // namespace quorbel
