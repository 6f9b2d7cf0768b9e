#pragma once

#include <CLI/App.hpp>

#include <string>

namespace quorbel {

/// `export`: a preset as a parametric equaliser text, or as JSON where the file's name ends so.
class ExportCommand {
  public:
    /// Declares the subcommand and its options.
    explicit ExportCommand(CLI::App &program);

    [[nodiscard]] bool isChosen() const { return command_->parsed(); }

    /// Throws CommandError.
    void run() const;

  private:
    CLI::App *command_;
    std::string presetName_;
    std::string path_;
};

} // namespace quorbel
