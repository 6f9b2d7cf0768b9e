#pragma once

#include "platform/core/Programs.h"

#include <string>

namespace quorbel {

/// Returns "Processed", or the reason for leaving a stream alone.
[[nodiscard]] std::string treatmentText(StreamTreatment treatment);

/// Display name of a program: its own name, else the most readable of the others.
[[nodiscard]] std::string programLabel(const ProgramNames &program);

} // namespace quorbel
