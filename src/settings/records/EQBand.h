#pragma once

#include "platform/core/OctaveBands.h"
#include "settings/records/Uuid.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace quorbel {

/// One band of the equaliser as set by the user. Values are not clamped here, only in the units.
struct EQBand {
    enum class FilterType { parametric, lowShelf, highShelf, lowPass, highPass };

    /// In the order of pickers.
    static constexpr std::array allFilterTypes{FilterType::parametric, FilterType::lowShelf,
                                               FilterType::highShelf, FilterType::lowPass,
                                               FilterType::highPass};

    Uuid id = Uuid::random();
    float frequency = 1000.0F; ///< Hz, centre or corner
    float gainDB = 0.0F;
    float q = 1.0F;
    FilterType filterType = FilterType::parametric;
    bool bypassed = false;

    /// Compares ids too: bands with the same sound but different ids are not equal.
    friend bool operator==(const EQBand &, const EQBand &) = default;

    /// Returns the flat ten-band octave equaliser with new ids.
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

/// Returns `bands`, with the ids of `others` if the lists differ only in ids. Factory bands get new
/// ids at every launch: without this, the active preset would always look changed.
[[nodiscard]] inline std::vector<EQBand> withIDsOf(const std::vector<EQBand> &others,
                                                   const std::vector<EQBand> &bands) {
    std::vector<EQBand> renamed = bands;
    for (std::size_t index = 0; index < std::min(bands.size(), others.size()); ++index)
        renamed[index].id = others[index].id;
    return renamed == others ? renamed : bands;
}

/// Ranges of the equaliser's controls. Bands from files may exceed them; controls show such values
/// unchanged until the user moves them.
struct BandLimits {
    static constexpr double minFrequency = 20.0; ///< Hz
    static constexpr double maxFrequency = 20000.0;
    static constexpr double minGain = -12.0; ///< dB, of a band and of the global gain
    static constexpr double maxGain = 12.0;
    static constexpr double gainStep = 0.1;
    static constexpr double minQ = 0.1;
    static constexpr double maxQ = 20.0;
};

} // namespace quorbel
