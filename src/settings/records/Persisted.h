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

/// The content of the settings file, in its order. The file always has the first three fields; it
/// has the others only with a value.
struct Persisted {
    std::vector<EQBand> bands;
    SpatialConfig spatial;
    std::vector<Preset> presets; ///< all presets, including the factory presets
    std::optional<Uuid> activePresetID;
    std::optional<MixerConfig> mixer;
    std::optional<std::string>
        activePresetName; ///< identifies the active preset if its id is unknown
    std::optional<float> eqGlobalGainDB;
    std::optional<std::string> outputDeviceUID;

    friend bool operator==(const Persisted &, const Persisted &) = default;
};

/// The user's chosen output while the settings file names another device in use.
struct OutputChoice {
    std::optional<std::string> outputDeviceUID; ///< none: the default output
    std::vector<std::string> standIns;          ///< uids in the settings file that were not chosen

    friend bool operator==(const OutputChoice &, const OutputChoice &) = default;
};

} // namespace quorbel
