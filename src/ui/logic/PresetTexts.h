#pragma once

#include "settings/records/Preset.h"

#include <string>
#include <string_view>

namespace quorbel {

/// Subset of the presets shown by a list.
enum class PresetFilter { all, factory, mine };

[[nodiscard]] std::string_view title(PresetFilter filter);
[[nodiscard]] bool passes(PresetFilter filter, const Preset &preset);
[[nodiscard]] int countOf(PresetFilter filter, const std::vector<Preset> &presets);

/// Summary of a preset: "10 bands · 2 spatial stages".
[[nodiscard]] std::string descriere(const Preset &preset);

/// Name for a copy of `name`, unique among `presets`: "Flat (copy)", then "Flat (copy 2)".
[[nodiscard]] std::string copyName(std::string_view name, const std::vector<Preset> &presets);

/// Converts `name` (UTF-8) to a file name without extension: at most 200 bytes, not hidden, never
/// empty. Replaces characters that file systems of Linux, Windows or macOS reject.
[[nodiscard]] std::string fileNameFor(std::string_view name);

} // namespace quorbel
