#pragma once

#include "settings/state/AppState.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace quorbel {

/// Whether the state lets the user's presets be set as a whole.
template <typename State>
concept KeepsUserPresets = requires(State &state, std::vector<Preset> presets) {
    state.setUserPresets(std::move(presets));
};

/// The user's presets, in list order; none where they could not be set again.
template <typename State> [[nodiscard]] std::vector<Preset> userPresets(const State &state) {
    std::vector<Preset> own;
    if constexpr (KeepsUserPresets<State>)
        std::ranges::copy_if(state.presets(), std::back_inserter(own), [](const Preset &preset) {
            return preset.category == Preset::Category::user;
        });
    return own;
}

/// Puts `presets` in the place of the user's presets.
template <typename State> void setUserPresets(State &state, std::vector<Preset> presets) {
    if constexpr (KeepsUserPresets<State>)
        state.setUserPresets(std::move(presets));
}

/// Makes `preset` one of the user's and the active one, its bands and spatial settings the current
/// ones; written at once. Returns the id that it has in the list.
template <typename State> Uuid adoptPreset(State &state, const Preset &preset) {
    if constexpr (KeepsUserPresets<State>) {
        std::vector<Preset> own = userPresets(state);
        own.push_back(preset);
        state.setUserPresets(std::move(own));
        state.applyPreset(preset);
        state.persist();
        return preset.id;
    } else {
        state.applyPreset(preset);
        state.savePreset(preset.name);
        return state.presets().back().id;
    }
}

} // namespace quorbel
