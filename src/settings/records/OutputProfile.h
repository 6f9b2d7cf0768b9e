#pragma once

#include "platform/core/OutputIdentity.h"
#include "settings/records/EQBand.h"
#include "settings/records/SpatialConfig.h"
#include "settings/records/Uuid.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// The settings that follow the output: those of a preset, and the gain that belongs to them.
struct OutputSound {
    std::vector<EQBand> bands{};
    SpatialConfig spatial{};
    float presetGainDB = 0.0F;

    friend bool operator==(const OutputSound &, const OutputSound &) = default;
};

/// The outputs that a profile is for: those whose identity has all these names. Without any it is
/// for every output that has no profile of its own.
struct OutputKey {
    std::optional<std::string> card{};
    std::optional<std::string> route{};
    std::optional<std::string> node{};
    std::optional<OutputIdentity::Bluetooth> bluetooth{};

    [[nodiscard]] bool isAnyOther() const { return !card && !route && !node && !bluetooth; }

    friend bool operator==(const OutputKey &, const OutputKey &) = default;
};

/// The settings for some outputs.
struct OutputProfile {
    enum class Use {
        preset,     ///< a preset; without an id, the profile's own settings
        flat,       ///< processed, but without any change
        leaveAlone, ///< nothing is captured while the output is in use
    };

    OutputKey key{};
    std::string label{}; ///< the output's name for the user when it was last seen
    Use use = Use::preset;
    std::optional<Uuid> presetID{};
    std::optional<std::string> presetName{}; ///< identifies the preset when its id is gone
    /// The settings in place of the preset's or of the flat ones: the user has changed them.
    std::optional<OutputSound> own{};

    friend bool operator==(const OutputProfile &, const OutputProfile &) = default;
};

} // namespace quorbel
