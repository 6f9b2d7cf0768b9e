#pragma once

#include "settings/records/Preset.h"

#include <string_view>
#include <vector>

namespace quorbel {

/// The presets in the order in which pickers offer them: the favourites, the user's own, then the
/// library. Within each of the three their order stays.
[[nodiscard]] std::vector<Preset> inPickerOrder(const std::vector<Preset> &presets,
                                                const std::vector<Uuid> &favourites);

/// The preset of this name, or null. Where no name is equal, capitals and the kind of dash do not
/// count.
[[nodiscard]] const Preset *presetNamed(const std::vector<Preset> &presets, std::string_view name);

} // namespace quorbel
