#pragma once

#include "engine/ChainUnits.h"
#include "platform/units/ParameterTree.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <span>

namespace quorbel {

class AudioUnit;

/// One line of the table that says which setting goes into which parameter of which unit. An effect
/// that is off gets its neutral value; it stays in the chain.
template <typename Record> struct UnitSetting {
    ChainUnit unit;
    ParameterAddress address;
    float (*value)(const Record &);
};

/// In the order in which they are sent.
[[nodiscard]] std::span<const UnitSetting<SpatialConfig>> spatialUnitSettings();
[[nodiscard]] std::span<const UnitSetting<MixerConfig>> mixerUnitSettings();

/// Sends the lines of a table that concern one unit. Parameters that it does not have are left out.
void pushSettings(const SpatialConfig &record, ChainUnit which, const AudioUnit &unit);
void pushSettings(const MixerConfig &record, ChainUnit which, const AudioUnit &unit);

} // namespace quorbel
