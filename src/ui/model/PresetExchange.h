#pragma once

#include "settings/interchange/InterchangeError.h"
#include "settings/records/Preset.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorbel {

/// Why a file could not be read or written as a preset: one printable line that names the file.
class PresetExchangeError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file as a preset of the user's.
struct ImportedPreset {
    Preset preset;
    std::optional<float> globalGainDB; ///< of an equaliser text; a preset file has none
    std::string summary;               ///< one line for the user
    std::vector<LineNote> skipped;     ///< lines without effect
    std::vector<LineNote> limited;     ///< lines that are played otherwise than written
};

/// Reads a parametric equaliser text or a preset file, whichever it is; the text's preset is named
/// after the file. Only a regular file of bounded size is read. Throws PresetExchangeError.
[[nodiscard]] ImportedPreset readPreset(const std::string &path);

/// Writes a preset whole to a file whose name ends in ".json", else as a parametric equaliser text
/// with `globalGainDB` as its preamp. A file that exists is replaced, as a whole or not at all.
/// Throws PresetExchangeError.
void writePreset(const std::string &path, const Preset &preset, float globalGainDB);

} // namespace quorbel
