#pragma once

#include "platform/core/Programs.h"

namespace quorbel {

/// Marks of calls that are known to this version (known-programs.json).
[[nodiscard]] const CallMarks &knownCalls();

/// The names that identify a program in a rule: the most specific ones of its streams. An
/// executable that runs many programs does not suffice alone.
[[nodiscard]] ProgramNames namesForRule(const ProgramNames &program);

} // namespace quorbel
