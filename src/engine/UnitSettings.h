#pragma once

#include "engine/ChainUnits.h"
#include "platform/units/ParameterTree.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <span>

namespace quorbel {

class AudioUnit;

/// Maps a setting to a unit's parameter. An effect that is off gets its neutral value and stays in
/// the chain.
template <typename Record> struct UnitSetting {
    ChainUnit unit;
    ParameterAddress address;
    float (*value)(const Record &);
};

/// The mappings, in the order of sending.
[[nodiscard]] std::span<const UnitSetting<SpatialConfig>> spatialUnitSettings();
[[nodiscard]] std::span<const UnitSetting<MixerConfig>> mixerUnitSettings();

/// Sends the settings of one unit, skipping parameters that the unit does not have.
void pushSettings(const SpatialConfig &record, ChainUnit which, const AudioUnit &unit);
void pushSettings(const MixerConfig &record, ChainUnit which, const AudioUnit &unit);

} // namespace quorbel
