#pragma once

#include <stdexcept>
#include <string>

namespace quorbel {

/// Ends a subcommand; the user reads `what()`.
class CommandError : public std::runtime_error {
  public:
    enum class Status { failed = 1, nothingRuns = 3 };

    explicit CommandError(const std::string &text, Status status = Status::failed)
        : std::runtime_error(text), status_(status) {}

    [[nodiscard]] Status status() const { return status_; }

  private:
    Status status_;
};

} // namespace quorbel
