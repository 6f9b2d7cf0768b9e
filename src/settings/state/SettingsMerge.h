#pragma once

#include "settings/records/Persisted.h"

#include <vector>

namespace quorbel {

/// Merges two sets of changes of the same settings: a field that differs between `base` and `ours`
/// is taken from `ours`, any other from `theirs`. Presets are merged one by one, by their ids.
/// Optional fields that `theirs` lacks are ours.
[[nodiscard]] Persisted mergedSettings(const Persisted &base, const Persisted &ours,
                                       const Persisted &theirs);

/// The same for a list of presets. A preset that one side has deleted and the other has changed is
/// kept. The order is theirs where both have changed the list, with our new ones at the end.
[[nodiscard]] std::vector<Preset> mergedPresets(const std::vector<Preset> &base,
                                                const std::vector<Preset> &ours,
                                                const std::vector<Preset> &theirs);

} // namespace quorbel
