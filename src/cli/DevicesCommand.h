#pragma once

#include <CLI/App.hpp>

namespace quorbel {

/// `devices`: the output devices that sound can be played on.
class DevicesCommand {
  public:
    /// Declares the subcommand and its options.
    explicit DevicesCommand(CLI::App &program);

    [[nodiscard]] bool isChosen() const { return command_->parsed(); }

    /// Throws CommandError.
    void run() const;

  private:
    CLI::App *command_;
    bool json_ = false;
};

} // namespace quorbel
