#pragma once

#include <CLI/CLI.hpp>

namespace quorbel {

/// Accepts what is a finite number of seconds, not negative.
[[nodiscard]] CLI::Validator timeInSeconds();

} // namespace quorbel
