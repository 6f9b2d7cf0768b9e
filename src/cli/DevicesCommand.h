#pragma once

#include "cli/Command.h"

namespace quorbel {

/// `devices`: the output devices that sound can be played on.
class DevicesCommand final : public Command {
  public:
    DevicesCommand();

    void run() const override;

  private:
    bool json_ = false;
    bool uids_ = false;
};

} // namespace quorbel
