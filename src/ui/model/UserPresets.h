#pragma once

#include "settings/state/AppState.h"

#include <vector>

namespace quorbel {

/// The user's among `presets`, in list order.
[[nodiscard]] std::vector<Preset> userPresets(const std::vector<Preset> &presets);

/// Adds `preset` to the user's and applies it. Written at once and as a whole.
void adoptPreset(AppState &state, const Preset &preset);

/// Gives a preset of the user's another name. Written at once. An id that none of the user's has
/// changes nothing.
void renamePreset(AppState &state, const Uuid &id, const std::string &name);

/// Makes the current bands, spatial settings and preset gain those of a preset of the user's, and
/// it the active one. Written at once. An id that none of the user's has changes nothing.
void updatePreset(AppState &state, const Uuid &id);

/// Puts the user's own presets `added` behind the others. Written at once.
void addPresets(AppState &state, const std::vector<Preset> &added);

/// Makes a preset of the user's of `original`, behind it or, of a factory preset, at the end; the
/// active one stays. Written at once. Returns its id.
Uuid duplicatePreset(AppState &state, const Preset &original);

} // namespace quorbel
