#pragma once

namespace quorbel {

/// The program's version, as releases and packages name it; from the project's CMake file.
inline constexpr const char *version = QUORBEL_VERSION;

} // namespace quorbel
