#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

namespace quorbel {

/// An unusable text, or settings that the format cannot hold. `what()` is one printable line:
/// "line 3: " and the reason.
class InterchangeError : public std::runtime_error {
  public:
    /// Line 0 means the text as a whole.
    InterchangeError(std::size_t line, std::string reason)
        : std::runtime_error(line == 0 ? reason : "line " + std::to_string(line) + ": " + reason),
          line_(line), reason_(std::move(reason)) {}

    [[nodiscard]] std::size_t line() const { return line_; }
    [[nodiscard]] const std::string &reason() const { return reason_; }

  private:
    std::size_t line_;
    std::string reason_;
};

/// A note for the user about one line of a text: the reason for skipping it, or a value beyond the
/// equaliser's range.
struct LineNote {
    std::size_t line = 0; ///< from 1
    std::string reason;   ///< one printable line

    friend bool operator==(const LineNote &, const LineNote &) = default;
};

} // namespace quorbel
