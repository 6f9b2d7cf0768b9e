#include "settings/presets/PresetChoice.h"

#include <algorithm>

namespace quorbel {

namespace {

/// Converts a name to lower case and its em dashes to hyphens.
std::string asTyped(std::string_view name) {
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

std::vector<Preset> inPickerOrder(const std::vector<Preset> &presets,
                                  const std::vector<Uuid> &favourites) {
    const auto isFavourite = [&](const Preset &preset) {
        return std::ranges::find(favourites, preset.id) != favourites.end();
    };
    std::vector<Preset> ordered = presets;
    const auto library =
        std::stable_partition(ordered.begin(), ordered.end(), [&](const Preset &preset) {
            return preset.category == Preset::Category::user || isFavourite(preset);
        });
    std::stable_partition(ordered.begin(), library, isFavourite);
    return ordered;
}

const Preset *presetNamed(const std::vector<Preset> &presets, std::string_view name) {
    auto chosen = std::ranges::find(presets, name, &Preset::name);
    if (chosen == presets.end())
        chosen = std::ranges::find(presets, asTyped(name),
                                   [](const Preset &preset) { return asTyped(preset.name); });
    return chosen == presets.end() ? nullptr : &*chosen;
}

} // namespace quorbel
