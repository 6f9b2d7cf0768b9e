#pragma once

#include "settings/state/AppState.h"

#include <vector>

namespace quorbel {

/// The user's among `presets`, in list order.
[[nodiscard]] std::vector<Preset> userPresets(const std::vector<Preset> &presets);

/// Makes `preset` one of the user's and the active one, its bands and spatial settings the current
/// ones; written at once.
void adoptPreset(AppState &state, const Preset &preset);

} // namespace quorbel
