#pragma once

#include "equalizer/EqualizerBandSettings.h"
#include "settings/records/EQBand.h"

namespace quorbel {

/// Maps a band's type to the equaliser's filter.
[[nodiscard]] inline EqualizerFilterType playedFilterType(EQBand::FilterType type) {
    switch (type) {
    case EQBand::FilterType::parametric:
        return EqualizerFilterType::parametric;
    case EQBand::FilterType::lowShelf:
        return EqualizerFilterType::lowShelf;
    case EQBand::FilterType::highShelf:
        return EqualizerFilterType::highShelf;
    case EQBand::FilterType::lowPass:
        return EqualizerFilterType::lowPass;
    case EQBand::FilterType::highPass:
        return EqualizerFilterType::highPass;
    }
    return EqualizerFilterType::parametric;
}

} // namespace quorbel
