#pragma once

#include "settings/state/AppState.h"

#include <optional>
#include <vector>

namespace quorbel {

/// The user's among `presets`, in list order.
[[nodiscard]] std::vector<Preset> userPresets(const std::vector<Preset> &presets);

/// Makes `preset` one of the user's and the active one, its bands and spatial settings the current
/// ones, together with the equaliser's gain in dB where there is one. Written at once and as a
/// whole.
void adoptPreset(AppState &state, const Preset &preset, std::optional<float> globalGainDB);

} // namespace quorbel
