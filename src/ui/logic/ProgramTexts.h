#pragma once

#include "platform/core/Programs.h"

#include <string>

namespace quorbel {

/// "Processed", or why a stream is left alone.
[[nodiscard]] std::string treatmentText(StreamTreatment treatment);

/// The name of a program for the user: its own, else the most readable of the others.
[[nodiscard]] std::string programLabel(const ProgramNames &program);

} // namespace quorbel
