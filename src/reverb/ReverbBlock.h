#pragma once

#include "reverb/ReverbTank.h"

namespace quorbel {

/// NaN and samples of at least this magnitude count as silence, so the room never overflows.
inline constexpr float loudestReverbInput = 1e15F;

/// Plain reference: renders 1 to 32 frames within one block of the grid.
void processReverbBlock(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Renders any number of whole blocks in the machine's widest vectors.
void processReverbBlocks(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Advances the position by `frames` rendered frames.
void advanceReverb(ReverbTank::State &state, std::uint32_t frames) noexcept;

} // namespace quorbel
