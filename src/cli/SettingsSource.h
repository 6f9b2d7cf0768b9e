#pragma once

#include "engine/ChainSettings.h"
#include "settings/records/Persisted.h"

#include <string>

namespace quorbel {

/// The settings that a command starts from: the file named by the user or, where `path` is empty,
/// the user's own settings file or, where that cannot be read, the defaults. The file is left as it
/// is. Throws CommandError, naming the file and the place in it, for one that is not a settings
/// file.
[[nodiscard]] Persisted loadSettings(const std::string &path);

/// What of them decides the sound; a mixer or gain that the file does not have is the default.
[[nodiscard]] ChainSettings chainSettings(const Persisted &settings);

} // namespace quorbel
