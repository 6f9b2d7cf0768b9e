#pragma once

#include "settings/records/Persisted.h"
#include "settings/records/json/CodingError.h"

#include <string>
#include <string_view>
#include <variant>

namespace quorbel {

/// One value of the settings file. Records and lists are their JSON text.
using SettingValue = std::variant<bool, double, std::string>;

/// The value at a path of the settings file, such as `spatial.reverbMix` or `bands[2].gainDB`;
/// `bands.2.gainDB` is the same. An optional value that is missing reads as its type's default.
/// Throws DecodingError, which lists what there is, for a path that leads nowhere.
[[nodiscard]] SettingValue settingAt(const Persisted &settings, std::string_view path);

/// Replaces the value at `path` and returns the path in its first form. A text is taken as JSON
/// where the setting is no text itself. Bands keep their ids.
///
/// Throws DecodingError, and leaves the settings as they are, for a path as above, for one that can
/// only be read, for a value of the wrong kind, for a changed number beyond the range of its
/// control, and for another number of bands.
std::string setSettingAt(Persisted &settings, std::string_view path, const SettingValue &value);

} // namespace quorbel
