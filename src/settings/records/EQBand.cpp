#include "settings/records/EQBand.h"

namespace quorbel {

std::vector<EQBand> EQBand::defaultBands() {
    std::vector<EQBand> bands;
    for (const float frequency :
         {31.5F, 63.0F, 125.0F, 250.0F, 500.0F, 1000.0F, 2000.0F, 4000.0F, 8000.0F, 16000.0F})
        bands.push_back(EQBand{.frequency = frequency});
    bands.front().filterType = FilterType::lowShelf;
    bands.back().filterType = FilterType::highShelf;
    return bands;
}

} // namespace quorbel
