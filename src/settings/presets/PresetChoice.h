#pragma once

#include "settings/records/Preset.h"

#include <string_view>
#include <vector>

namespace quorbel {

/// Sorts the presets for pickers: favourites, the user's own, then the library, each group in its
/// given order.
[[nodiscard]] std::vector<Preset> inPickerOrder(const std::vector<Preset> &presets,
                                                const std::vector<Uuid> &favourites);

/// Returns the preset of this name or null: an exact match, else one that ignores case and the kind
/// of dash.
[[nodiscard]] const Preset *presetNamed(const std::vector<Preset> &presets, std::string_view name);

} // namespace quorbel
