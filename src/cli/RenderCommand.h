#pragma once

#include "cli/Command.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorbel {

/// `render`: a sound file through the chain into another, as fast as the machine can.
class RenderCommand final : public Command {
  public:
    RenderCommand();

    /// Throws CommandError; OUT is then as it was.
    void run() const override;

  private:
    std::string settingsPath_;
    std::optional<std::string> presetName_;
    std::uint32_t blockFrames_ = 512;
    std::vector<TimedFile> changes_; ///< settings files
    std::optional<std::string> metersPath_;
    std::optional<std::string> spectrumPath_;
    std::string inputPath_;
    std::string outputPath_;
};

} // namespace quorbel
