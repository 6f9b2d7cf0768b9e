#pragma once

#include "settings/records/Preset.h"

#include <vector>

namespace quorbel {

/// The presets that ship with the program as they were tuned; ids and dates are still to be set.
[[nodiscard]] std::vector<Preset> factoryLibrary();

} // namespace quorbel
