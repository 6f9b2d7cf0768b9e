#pragma once

#include <CLI/App.hpp>

namespace quorbel {

/// `presets`: the program's presets and the user's own.
class PresetsCommand {
  public:
    /// Declares the subcommand and its options.
    explicit PresetsCommand(CLI::App &program);

    [[nodiscard]] bool isChosen() const { return command_->parsed(); }

    /// Throws CommandError.
    void run() const;

  private:
    CLI::App *command_;
    bool json_ = false;
};

} // namespace quorbel
