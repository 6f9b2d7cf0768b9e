#include "cli/PresetChoice.h"

#include "cli/CommandError.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/JsonLiterals.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace quorbel {

namespace {

/// As it would be typed on a plain keyboard, in small letters.
std::string asTyped(const std::string &name) {
    constexpr std::string_view emDash = "—";
    std::string typed;
    for (std::size_t index = 0; index < name.size();) {
        if (name.compare(index, emDash.size(), emDash) == 0) {
            typed += '-';
            index += emDash.size();
            continue;
        }
        const char letter = name[index++];
        typed += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return typed;
}

} // namespace

std::vector<Preset> availablePresets(const Persisted &settings) {
    std::vector<Preset> presets = factoryPresets();
    std::copy_if(settings.presets.begin(), settings.presets.end(), std::back_inserter(presets),
                 [](const Preset &preset) { return preset.category == Preset::Category::user; });
    return presets;
}

Preset presetNamed(const Persisted &settings, const std::string &name) {
    const std::vector<Preset> presets = availablePresets(settings);
    auto chosen = std::find_if(presets.begin(), presets.end(),
                               [&](const Preset &preset) { return preset.name == name; });
    if (chosen == presets.end())
        chosen = std::find_if(presets.begin(), presets.end(), [&](const Preset &preset) {
            return asTyped(preset.name) == asTyped(name);
        });
    if (chosen == presets.end())
        throw CommandError(fmt::format("no preset is named {}; `ostrafine-cli presets` lists them",
                                       quotedText(name)));
    return *chosen;
}

void applyPreset(Persisted &settings, const std::string &name) {
    const Preset chosen = presetNamed(settings, name);
    settings.bands = chosen.bands;
    settings.spatial = chosen.spatial;
}

} // namespace quorbel
