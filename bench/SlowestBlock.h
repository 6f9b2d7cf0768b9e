#pragma once

#include <cstdint>

namespace quorbel::bench {

/// Renders `blocks` blocks of 64 frames through the whole chain with everything on. Prints the
/// slowest, the 99.9th percentile and the median time.
void printSlowestBlock(std::uint32_t blocks);

/// Changes all ten bands `glides` times. Prints the times of the slowest block during a glide and
/// of a block after it.
void printSlowestBlockOfAGlide(std::uint32_t glides);

} // namespace quorbel::bench
