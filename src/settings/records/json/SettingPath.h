#pragma once

#include "settings/records/Persisted.h"
#include "settings/records/json/CodingError.h"

#include <string>
#include <string_view>
#include <variant>

namespace quorbel {

/// One value of the settings file. Records and lists are JSON text.
using SettingValue = std::variant<bool, double, std::string>;

/// The value at a path of the settings file, such as `spatial.reverbMix` or `bands[2].gainDB`, also
/// written `bands.2.gainDB`. A missing optional value reads as its type's default. Throws
/// DecodingError, which lists the valid names, for an unknown path.
[[nodiscard]] SettingValue settingAt(const Persisted &settings, std::string_view path);

/// Replaces the value at `path` and returns the path in its bracket form. Parses a string as JSON
/// unless the setting is a string. Bands keep their ids.
///
/// Throws DecodingError without changing the settings. Causes: an unknown or read-only path, a
/// value of the wrong type, a changed number beyond its control's range, another number of bands.
std::string setSettingAt(Persisted &settings, std::string_view path, const SettingValue &value);

} // namespace quorbel
