#pragma once

#include "cli/CommandError.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/CodingError.h"

namespace quorbel {

/// Reads a file beside the settings file, which is left as it is. Throws CommandError for one that
/// cannot be read or decoded. `File` has `peek` and `path`, as PresetGainsFile has.
template <class File> void peekOrError(File &file) {
    try {
        file.peek();
    } catch (const SettingsFileError &error) {
        throw CommandError(error.what());
    } catch (const DecodingError &error) {
        throw CommandError(file.path() + ": " + error.what());
    }
}

} // namespace quorbel
