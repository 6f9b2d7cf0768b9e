#pragma once

#include "reverb/ReverbTank.h"

namespace quorbel {

/// Samples of at least this magnitude, and NaN, count as silence: so the room never overflows.
inline constexpr float loudestReverbInput = 1e15F;

/// Plain code for 1 to 32 frames of one block of the grid; the reference for the vector code.
void processReverbBlock(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Renders any number of whole blocks in the machine's widest vectors.
void processReverbBlocks(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Advances the position by `frames` rendered frames.
void advanceReverb(ReverbTank::State &state, std::uint32_t frames) noexcept;

} // namespace quorbel
