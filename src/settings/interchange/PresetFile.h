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

/// A file as a preset of the user's.
struct ImportedPreset {
    Preset preset;
    std::optional<float> gainDB;   ///< the preamp of an equaliser text; a preset file has none
    std::string summary;           ///< one line for the user
    std::string fitSummary;        ///< the same of a fit onto ten bands; empty for no fit
    std::vector<LineNote> skipped; ///< lines without effect
    std::vector<LineNote> limited; ///< lines that are played otherwise than written
};

/// Reads a parametric equaliser text or a preset file, whichever it is. The preset has the name
/// `name`; by default a text's is the file's and a preset file's the written one. Only a regular
/// file of bounded size is read. Throws InterchangeError or DecodingError, without the file's name.
[[nodiscard]] ImportedPreset readPreset(const std::string &path,
                                        const std::optional<std::string> &name = std::nullopt);

/// Adds `preset` to the settings and applies it. Everything else stays.
void adoptPreset(Persisted &settings, const Preset &preset);

/// Writes a preset whole to a file whose name ends in ".json", else as a parametric equaliser text
/// with `gainDB` as its preamp. A file that exists is replaced, as a whole or not at all. Returns a
/// line for the user if the file does not hold the gain; otherwise empty. Throws InterchangeError
/// or EncodingError for a value that the form cannot hold, and FileReplacementError.
std::string writePreset(const std::string &path, const Preset &preset, float gainDB);

// The JSON form.

inline constexpr std::size_t maximumPresetFileBytes = std::size_t{1} << 20U;

/// One preset as JSON: the same object as in the settings file's `presets`, and a line break.
/// Throws EncodingError for a value that JSON cannot hold.
[[nodiscard]] std::string writePresetFile(const Preset &preset);

/// Returns true for a text that is meant as such a file: its first character, after a UTF-8 byte
/// order mark and blanks, opens an object.
[[nodiscard]] bool isPresetFile(std::string_view text);

/// Reads such a file, strictly, as a preset of the user's own: a new id, category `user`, the name
/// `name` or else the written one, everything else as written. A list of fewer than ten bands is
/// filled up with flat ones. Throws DecodingError with the path of the value, or InterchangeError
/// for a text that is too large or a blank name.
[[nodiscard]] Preset readPresetFile(std::string_view json,
                                    const std::optional<std::string> &name = std::nullopt);

} // namespace quorbel
