#pragma once

#include "engine/ChainUnits.h"
#include "platform/units/ParameterTree.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <span>

namespace quorbel {

class AudioUnit;

/// One line of the table from settings to the parameters of units. An effect that is off gets its
/// neutral value and stays in the chain.
template <typename Record> struct UnitSetting {
    ChainUnit unit;
    ParameterAddress address;
    float (*value)(const Record &);
};

/// The table, in the order of sending.
[[nodiscard]] std::span<const UnitSetting<SpatialConfig>> spatialUnitSettings();
[[nodiscard]] std::span<const UnitSetting<MixerConfig>> mixerUnitSettings();

/// Sends the table's lines for one unit. Parameters that the unit does not have are left out.
void pushSettings(const SpatialConfig &record, ChainUnit which, const AudioUnit &unit);
void pushSettings(const MixerConfig &record, ChainUnit which, const AudioUnit &unit);

} // namespace quorbel
