#pragma once

namespace quorbel {

/// Reads a journal of routed streams from `input` until the program at the other end has ended.
/// Puts back every stream that it had routed, unless it reported a clean end. Returns the process's
/// exit status.
int runWatchdog(int input);

} // namespace quorbel
