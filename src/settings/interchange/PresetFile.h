#pragma once

#include "settings/records/Preset.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

inline constexpr std::size_t maximumPresetFileBytes = std::size_t{1} << 20U;

/// One preset as a JSON file: the object as it stands in the settings file's `presets`, and a line
/// break. Throws EncodingError for a value that JSON cannot hold.
[[nodiscard]] std::string writePresetFile(const Preset &preset);

/// Whether a text is meant as such a file: its first character, after a UTF-8 byte order mark and
/// blanks, opens an object.
[[nodiscard]] bool isPresetFile(std::string_view text);

/// Reads such a file, strictly. What comes back is a preset of the user's own: a new id, category
/// `user`, the name `name` or else the written one, everything else as written; a list of fewer
/// than ten bands is filled up with flat ones. Throws DecodingError with the path of the value, or
/// InterchangeError for a text that is too large or a name of nothing but blanks.
[[nodiscard]] Preset readPresetFile(std::string_view json,
                                    const std::optional<std::string> &name = std::nullopt);

} // namespace quorbel
