#pragma once

#include "platform/core/OctaveBands.h"
#include "settings/records/Uuid.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace quorbel {

/// One band of the equaliser as the user sets it. Values are kept as given; the units clamp.
struct EQBand {
    enum class FilterType { parametric, lowShelf, highShelf, lowPass, highPass };

    /// In the order in which pickers list them.
    static constexpr std::array allFilterTypes{FilterType::parametric, FilterType::lowShelf,
                                               FilterType::highShelf, FilterType::lowPass,
                                               FilterType::highPass};

    Uuid id = Uuid::random();
    float frequency = 1000.0F; ///< Hz, centre or corner
    float gainDB = 0.0F;
    float q = 1.0F;
    FilterType filterType = FilterType::parametric;
    bool bypassed = false;

    /// Identity counts: two bands that sound the same but have different ids are not equal.
    friend bool operator==(const EQBand &, const EQBand &) = default;

    /// The flat ten-band octave equaliser, every band with an id of its own at every call.
    [[nodiscard]] static std::vector<EQBand> defaultBands();
};

inline std::vector<EQBand> EQBand::defaultBands() {
    std::vector<EQBand> bands;
    bands.reserve(octaveBandsHz.size());
    for (const double hz : octaveBandsHz)
        bands.push_back(EQBand{.frequency = static_cast<float>(hz)});
    bands.front().filterType = FilterType::lowShelf;
    bands.back().filterType = FilterType::highShelf;
    return bands;
}

/// `bands`, with the ids of `others` where the two lists differ in nothing else. Factory bands get
/// new ids at every launch, and ids count when bands are compared: without this, every start would
/// find the active preset changed.
[[nodiscard]] inline std::vector<EQBand> withIDsOf(const std::vector<EQBand> &others,
                                                   const std::vector<EQBand> &bands) {
    std::vector<EQBand> renamed = bands;
    for (std::size_t index = 0; index < std::min(bands.size(), others.size()); ++index)
        renamed[index].id = others[index].id;
    return renamed == others ? renamed : bands;
}

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
