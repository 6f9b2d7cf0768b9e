#pragma once

namespace quorbel::bench {

/// Starts and stops the engine on simulated hardware and switches the output and its profile, for
/// every factory preset on pink noise and music. Prints the excess in dB of the 100 ms level at a
/// device over the louder end, as `printLevelTable` does.
void printLiveLevelTable();

} // namespace quorbel::bench
