#pragma once

#include "platform/dsp/EqualizerBandSettings.h"
#include "settings/records/EQBand.h"

namespace quorbel {

/// What the equaliser plays for a band of this type.
[[nodiscard]] EqualizerFilterType playedFilterType(EQBand::FilterType type);

} // namespace quorbel
