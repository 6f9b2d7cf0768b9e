#pragma once

#include "cli/Command.h"

#include <string>

namespace quorbel {

/// `export`: a preset as a parametric equaliser text, or as JSON where the file's name ends so.
class ExportCommand final : public Command {
  public:
    ExportCommand();

    void run() const override;

  private:
    std::string presetName_;
    std::string path_;
};

} // namespace quorbel
