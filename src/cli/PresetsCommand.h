#pragma once

#include "cli/Command.h"

namespace quorbel {

/// `presets`: the program's presets and the user's own.
class PresetsCommand final : public Command {
  public:
    PresetsCommand();

    void run() const override;

  private:
    bool json_ = false;
    bool names_ = false;
};

} // namespace quorbel
