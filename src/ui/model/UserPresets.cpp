#include "ui/model/UserPresets.h"

#include "ui/logic/PresetTexts.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorbel {

namespace {

/// Applies `change` to the user preset with that id, if it exists, and saves.
template <typename Change>
void changeUserPreset(AppState &state, const Uuid &id, const Change &change) {
    std::vector<Preset> own = userPresets(state.presets());
    const auto found = std::ranges::find(own, id, &Preset::id);
    if (found == own.end())
        return;
    change(*found);
    state.setUserPresets(std::move(own));
}

} // namespace

std::vector<Preset> userPresets(const std::vector<Preset> &presets) {
    std::vector<Preset> own;
    std::ranges::copy_if(presets, std::back_inserter(own), [](const Preset &preset) {
        return preset.category == Preset::Category::user;
    });
    return own;
}

void adoptPreset(AppState &state, const Preset &preset) {
    state.applyPreset(preset);
    // Last, because it saves the preset and its sound.
    addPresets(state, {preset});
}

void renamePreset(AppState &state, const Uuid &id, const std::string &name) {
    changeUserPreset(state, id, [&](Preset &preset) { preset.name = name; });
}

void updatePreset(AppState &state, const Uuid &id) {
    changeUserPreset(state, id, [&](Preset &preset) {
        preset.bands = state.engine().eq().bands();
        preset.spatial = state.engine().spatial();
        state.setPresetGainDB(id, state.engine().eq().presetGainDB());
        state.applyPreset(preset); // activates it; the sound does not change
    });
}

void addPresets(AppState &state, const std::vector<Preset> &added) {
    std::vector<Preset> own = userPresets(state.presets());
    own.insert(own.end(), added.begin(), added.end());
    state.setUserPresets(std::move(own));
}

Uuid duplicatePreset(AppState &state, const Preset &original) {
    Preset copy = original;
    copy.id = Uuid::random();
    copy.name = copyName(original.name, state.presets());
    copy.category = Preset::Category::user;
    copy.createdAt = Date::now();
    const Uuid id = copy.id;
    state.setPresetGainDB(id, state.presetGains().of(original.id));
    std::vector<Preset> own = userPresets(state.presets());
    const auto at = std::ranges::find(own, original.id, &Preset::id);
    own.insert(at == own.end() ? at : at + 1, std::move(copy));
    state.setUserPresets(std::move(own));
    return id;
}

} // namespace quorbel
