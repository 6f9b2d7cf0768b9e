#pragma once

namespace quorbel::bench {

/// Switches between all pairs of factory presets, and to Compare and back, on pink noise and on
/// music, and prints by how many dB the level of 100 ms (K weighting of ITU-R BS.1770) exceeds the
/// louder of the two ends. An end is the level at the same moment without the switch. Compare ends
/// at the unprocessed sound with the gain that it has settled at.
void printLevelTable();

} // namespace quorbel::bench
