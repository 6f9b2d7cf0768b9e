#pragma once

#include "settings/records/Preset.h"

#include <string>
#include <string_view>

namespace quorbel {

/// Presets that a list shows.
enum class PresetFilter { all, factory, mine };

[[nodiscard]] std::string_view title(PresetFilter filter);
[[nodiscard]] bool passes(PresetFilter filter, const Preset &preset);
[[nodiscard]] int countOf(PresetFilter filter, const std::vector<Preset> &presets);

/// The content of a preset in one line: "10 bands · 2 spatial stages".
[[nodiscard]] std::string descriere(const Preset &preset);

/// A name for a copy of the preset called `name` that none of `presets` has: "Flat (copy)", then
/// "Flat (copy 2)".
[[nodiscard]] std::string copyName(std::string_view name, const std::vector<Preset> &presets);

/// `name` (UTF-8) as the name of a file without its extension: at most 200 bytes, not hidden, and
/// without the characters that a file system of Linux, Windows or macOS refuses. Never empty.
[[nodiscard]] std::string fileNameFor(std::string_view name);

} // namespace quorbel
