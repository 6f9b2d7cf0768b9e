#pragma once

#include "cli/Command.h"

#include <optional>
#include <string>

namespace quorbel {

/// `import`: a parametric equaliser text or a preset file becomes a preset of the user's own, which
/// is put in force.
class ImportCommand final : public Command {
  public:
    ImportCommand();

    /// Throws CommandError; the settings are then as they were.
    void run() const override;

  private:
    std::string path_;
    std::optional<std::string> name_;
};

} // namespace quorbel
