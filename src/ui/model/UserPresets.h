#pragma once

#include "settings/state/AppState.h"

#include <vector>

namespace quorbel {

/// The user's presets, in list order.
[[nodiscard]] std::vector<Preset> userPresets(const AppState &state);

/// Makes `preset` one of the user's and the active one, its bands and spatial settings the current
/// ones; written at once.
void adoptPreset(AppState &state, const Preset &preset);

} // namespace quorbel
