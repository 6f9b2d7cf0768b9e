#pragma once

namespace quorbel {

/// Reads a journal of routed streams from `input` until the program at the other end has gone. If
/// it went without saying that everything is restored, puts every stream back that it had routed.
/// Returns the process's exit status.
int runWatchdog(int input);

} // namespace quorbel
