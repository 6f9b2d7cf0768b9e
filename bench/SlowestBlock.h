#pragma once

#include <cstdint>

namespace quorbel::bench {

/// Renders `blocks` blocks of 64 frames through the whole chain with everything on, and prints the
/// time of the slowest, the 99.9th percentile and the median.
void printSlowestBlock(std::uint32_t blocks);

/// Changes all ten bands `glides` times, and prints the time of a change's slowest block and of a
/// block after it.
void printSlowestBlockOfAGlide(std::uint32_t glides);

} // namespace quorbel::bench
