#pragma once

#include "platform/core/OutputIdentity.h"
#include "settings/records/EQBand.h"
#include "settings/records/SpatialConfig.h"
#include "settings/records/Uuid.h"

#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// Settings that follow the output: those of a preset, and its gain.
struct OutputSound {
    std::vector<EQBand> bands{};
    SpatialConfig spatial{};
    float presetGainDB = 0.0F;

    friend bool operator==(const OutputSound &, const OutputSound &) = default;
};

/// The outputs of a profile: every output with all these names in its identity. An empty key
/// matches every output without its own profile.
struct OutputKey {
    std::optional<std::string> card{};
    std::optional<std::string> route{};
    std::optional<std::string> node{};
    std::optional<OutputIdentity::Bluetooth> bluetooth{};

    [[nodiscard]] bool isAnyOther() const { return !card && !route && !node && !bluetooth; }

    friend bool operator==(const OutputKey &, const OutputKey &) = default;
};

/// Settings for the outputs that match `key`.
struct OutputProfile {
    enum class Use {
        preset,     ///< a preset; without an id, the profile's own settings
        flat,       ///< processed with flat settings
        leaveAlone, ///< captures nothing while the output is in use
    };

    OutputKey key{};
    std::string label{}; ///< the output's display name when it was last seen
    Use use = Use::preset;
    std::optional<Uuid> presetID{};
    std::optional<std::string> presetName{}; ///< identifies the preset if its id is unknown
    /// The user's changed settings, in place of the preset's or the flat ones.
    std::optional<OutputSound> own{};

    friend bool operator==(const OutputProfile &, const OutputProfile &) = default;
};

} // namespace quorbel
