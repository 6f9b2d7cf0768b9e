#pragma once

namespace quorbel::bench {

/// Switches between all pairs of factory presets, and to Compare and back, on pink noise and music.
/// Prints the excess in dB of the 100 ms level (K weighting of ITU-R BS.1770) over the louder end.
/// An end is the level at the same time without the switch; the end of Compare is the unprocessed
/// sound at its settled gain.
void printLevelTable();

} // namespace quorbel::bench
