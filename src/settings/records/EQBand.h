#pragma once

#include "settings/records/Uuid.h"

#include <array>
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
    for (const float frequency :
         {31.5F, 63.0F, 125.0F, 250.0F, 500.0F, 1000.0F, 2000.0F, 4000.0F, 8000.0F, 16000.0F})
        bands.push_back(EQBand{.frequency = frequency});
    bands.front().filterType = FilterType::lowShelf;
    bands.back().filterType = FilterType::highShelf;
    return bands;
}

} // namespace quorbel
