#pragma once

#include "settings/records/Persisted.h"

#include <string>
#include <vector>

namespace quorbel {

/// The presets that a user with these settings has: the program's own, then the user's.
[[nodiscard]] std::vector<Preset> availablePresets(const Persisted &settings);

/// The one of them with this name. Where no name is equal, capitals and the kind of dash do not
/// count. Throws CommandError for a name that no preset has.
[[nodiscard]] Preset presetNamed(const Persisted &settings, const std::string &name);

/// Puts the bands and spatial settings of the preset with this name in the place of those in
/// `settings`; everything else stays. Throws as `presetNamed`.
void applyPreset(Persisted &settings, const std::string &name);

} // namespace quorbel
