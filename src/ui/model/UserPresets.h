#pragma once

#include "settings/state/AppState.h"

#include <vector>

namespace quorbel {

/// Returns the user presets among `presets`, in list order.
[[nodiscard]] std::vector<Preset> userPresets(const std::vector<Preset> &presets);

/// Adds `preset` to the user presets and applies it. Saves both at once, as a whole.
void adoptPreset(AppState &state, const Preset &preset);

/// Renames a user preset and saves at once; ignores other ids.
void renamePreset(AppState &state, const Uuid &id, const std::string &name);

/// Updates a user preset to the current bands, spatial settings and preset gain, activates it and
/// saves at once; ignores other ids.
void updatePreset(AppState &state, const Uuid &id);

/// Appends `added` to the user presets and saves at once.
void addPresets(AppState &state, const std::vector<Preset> &added);

/// Copies `original` to a user preset, after it or, for a factory preset, at the end. Keeps the
/// active preset and saves at once. Returns the copy's id.
Uuid duplicatePreset(AppState &state, const Preset &original);

} // namespace quorbel
