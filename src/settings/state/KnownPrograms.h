#pragma once

#include "platform/core/Programs.h"

namespace quorbel {

/// Marks of the calls that are known to this version (known-programs.json).
[[nodiscard]] const CallMarks &knownCalls();

/// The names by which a rule finds a program again: the most specific that its streams have. An
/// executable that runs many programs is no name by itself.
[[nodiscard]] ProgramNames namesForRule(const ProgramNames &program);

} // namespace quorbel
