#pragma once

namespace quorbel::bench {

/// Starts and stops the engine on a machine in memory, and switches the output and its profile, for
/// every factory preset on pink noise and on music. Prints by how many dB the level of 100 ms at a
/// device exceeds the louder of the two ends, as `printLevelTable` does.
void printLiveLevelTable();

} // namespace quorbel::bench
