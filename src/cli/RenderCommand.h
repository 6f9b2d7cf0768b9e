#pragma once

#include <CLI/App.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

/// `render`: a sound file through the chain into another, as fast as the machine can.
class RenderCommand {
  public:
    /// Declares the subcommand and its options.
    explicit RenderCommand(CLI::App &program);

    [[nodiscard]] bool isChosen() const { return command_->parsed(); }

    /// Throws CommandError; OUT is then as it was.
    void run() const;

  private:
    CLI::App *command_;
    std::string settingsPath_;
    std::optional<std::string> presetName_;
    std::uint32_t blockFrames_ = 512;
    std::vector<std::pair<double, std::string>> changes_; ///< seconds, settings file
    std::optional<std::string> metersPath_;
    std::optional<std::string> spectrumPath_;
    std::string inputPath_;
    std::string outputPath_;
};

} // namespace quorbel
