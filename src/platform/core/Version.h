#pragma once

namespace quorbel {

/// The project's version, such as "0.1.0".
extern const char *const version;

} // namespace quorbel
