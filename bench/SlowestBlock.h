#pragma once

#include <cstdint>

namespace quorbel::bench {

/// Renders so many blocks of 64 frames through the whole chain with everything on and prints how
/// long the slowest of them, the slowest but a thousandth, and the middle one took.
void printSlowestBlock(std::uint32_t blocks);

/// Changes all ten bands so often and prints how long the slowest of a change's blocks takes, and a
/// block after it.
void printSlowestBlockOfAGlide(std::uint32_t glides);

} // namespace quorbel::bench
