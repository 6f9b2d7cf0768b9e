#include "ui/model/UserPresets.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorbel {

std::vector<Preset> userPresets(const std::vector<Preset> &presets) {
    std::vector<Preset> own;
    std::ranges::copy_if(presets, std::back_inserter(own), [](const Preset &preset) {
        return preset.category == Preset::Category::user;
    });
    return own;
}

void adoptPreset(AppState &state, const Preset &preset, std::optional<float> globalGainDB) {
    {
        const auto change = state.engine().changeSettings();
        if (globalGainDB)
            state.engine().eq().setGlobalGainDB(*globalGainDB);
        state.applyPreset(preset);
    }
    // Last, because it writes the file: the preset, and all that was set above.
    std::vector<Preset> own = userPresets(state.presets());
    own.push_back(preset);
    state.setUserPresets(std::move(own));
}

} // namespace quorbel
