#pragma once

#include "settings/interchange/InterchangeError.h"
#include "settings/records/Persisted.h"
#include "settings/records/Preset.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// A user preset from a file.
struct ImportedPreset {
    Preset preset;
    std::optional<float> gainDB;   ///< the preamp of an equaliser text; a preset file has none
    std::string summary;           ///< one line for the user
    std::string fitSummary;        ///< one line about a fit to ten bands; empty without a fit
    std::vector<LineNote> skipped; ///< lines without effect
    std::vector<LineNote> limited; ///< values beyond the equaliser's range
};

/// Reads a parametric equaliser text or a preset file, detected from the content. The preset's name
/// is `name`, else the file name of a text or the name in a preset file. Accepts only regular files
/// of bounded size. Throws InterchangeError or DecodingError without the file's name.
[[nodiscard]] ImportedPreset readPreset(const std::string &path,
                                        const std::optional<std::string> &name = std::nullopt);

/// Adds `preset` to the settings and applies it.
void adoptPreset(Persisted &settings, const Preset &preset);

/// Writes a complete preset to a ".json" file, else a parametric equaliser text with `gainDB` as
/// its preamp. Replaces an existing file atomically. Returns a line for the user if the file lacks
/// the gain, else an empty text. Throws InterchangeError or EncodingError for a value that the
/// format cannot hold, and FileReplacementError.
std::string writePreset(const std::string &path, const Preset &preset, float gainDB);

// The JSON form.

inline constexpr std::size_t maximumPresetFileBytes = std::size_t{1} << 20U;

/// Encodes a preset as JSON: its object in the settings file's `presets`, and a line break. Throws
/// EncodingError for a value that JSON cannot hold.
[[nodiscard]] std::string writePresetFile(const Preset &preset);

/// Detects a preset file: its first character, after a UTF-8 byte order mark and blanks, opens an
/// object.
[[nodiscard]] bool isPresetFile(std::string_view text);

/// Reads a preset file strictly as a user preset: a new id, category `user`, the name `name` or the
/// one in the file. Adds flat bands up to ten; keeps everything else. Throws DecodingError with the
/// path of the value, or InterchangeError for a text that is too large or a blank name.
[[nodiscard]] Preset readPresetFile(std::string_view json,
                                    const std::optional<std::string> &name = std::nullopt);

} // namespace quorbel
