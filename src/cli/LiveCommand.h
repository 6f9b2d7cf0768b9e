#pragma once

#include "cli/Command.h"

#include <optional>
#include <string>

namespace quorbel {

/// `live`: everything the computer plays through the chain, until a signal or for some time.
class LiveCommand final : public Command {
  public:
    LiveCommand();

    /// Throws CommandError; the sound is then as it was.
    void run() const override;

    /// Only logs there: the sound stays when the reader of the log is gone.
    [[nodiscard]] bool needsOutput() const override { return false; }

  private:
    std::string settingsPath_;
    std::optional<std::string> presetName_;
    std::optional<std::string> deviceUID_;
    std::optional<double> seconds_;
};

} // namespace quorbel
