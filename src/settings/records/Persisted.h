#pragma once

#include "settings/records/EQBand.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/Preset.h"
#include "settings/records/SpatialConfig.h"
#include "settings/records/Uuid.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// What the settings file holds, in the order in which it is written. The first three are always
/// there; the rest is absent when it has no value.
struct Persisted {
    std::vector<EQBand> bands;
    SpatialConfig spatial;
    std::vector<Preset> presets; ///< the whole list, the program's own included
    std::optional<Uuid> activePresetID;
    std::optional<MixerConfig> mixer;
    std::optional<std::string>
        activePresetName; ///< finds the active preset again when its id is gone
    std::optional<float> eqGlobalGainDB;
    std::optional<std::string> outputDeviceUID;

    friend bool operator==(const Persisted &, const Persisted &) = default;
};

} // namespace quorbel
