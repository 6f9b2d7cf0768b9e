#pragma once

#include <QString>

#include <string>

namespace quorbel {

/// An error's text as the window shows it: as it stands, unless a catalogue that is loaded has
/// another wording for it.
[[nodiscard]] QString shownError(const std::string &message);

} // namespace quorbel
