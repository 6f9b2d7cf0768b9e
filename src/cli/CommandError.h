#pragma once

#include <stdexcept>

namespace quorbel {

/// Ends a subcommand with exit status 1; `what()` is the line that the user reads.
class CommandError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace quorbel
