#pragma once

#include <CLI/App.hpp>

#include <optional>
#include <string>

namespace quorbel {

/// `import`: a parametric equaliser text or a preset file becomes a preset of the user's own, which
/// is put in force.
class ImportCommand {
  public:
    /// Declares the subcommand and its options.
    explicit ImportCommand(CLI::App &program);

    [[nodiscard]] bool isChosen() const { return command_->parsed(); }

    /// Throws CommandError; the settings are then as they were.
    void run() const;

  private:
    CLI::App *command_;
    std::string path_;
    std::optional<std::string> name_;
};

} // namespace quorbel
