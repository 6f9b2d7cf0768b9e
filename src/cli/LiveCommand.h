#pragma once

#include <CLI/App.hpp>

#include <optional>
#include <string>

namespace quorbel {

/// `live`: everything the computer plays through the chain, until a signal or for some time.
class LiveCommand {
  public:
    /// Declares the subcommand and its options.
    explicit LiveCommand(CLI::App &program);

    [[nodiscard]] bool isChosen() const { return command_->parsed(); }

    /// Throws CommandError; the sound is then as it was.
    void run() const;

  private:
    CLI::App *command_;
    std::string settingsPath_;
    std::optional<std::string> presetName_;
    std::optional<std::string> deviceUID_;
    std::optional<double> seconds_;
};

} // namespace quorbel
