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

/// The content of the settings file, in the order in which it is written. The first three fields
/// are always there; the others only with a value.
struct Persisted {
    std::vector<EQBand> bands;
    SpatialConfig spatial;
    std::vector<Preset> presets; ///< the whole list, the program's own included
    std::optional<Uuid> activePresetID;
    std::optional<MixerConfig> mixer;
    std::optional<std::string>
        activePresetName; ///< identifies the active preset when its id is gone
    std::optional<float> eqGlobalGainDB;
    std::optional<std::string> outputDeviceUID;

    friend bool operator==(const Persisted &, const Persisted &) = default;
};

/// The user's choice of output while the settings file names another device as the one in use.
struct OutputChoice {
    std::optional<std::string> outputDeviceUID; ///< none: nothing chosen, the default will do
    std::vector<std::string> standIns;          ///< uids in the settings file that are no choice

    friend bool operator==(const OutputChoice &, const OutputChoice &) = default;
};

} // namespace quorbel
