#pragma once

#include "platform/dsp/reverb/ReverbTank.h"

namespace quorbel {

/// Samples of this magnitude and beyond, and what is not a number, are taken as silence: nothing
/// finite then ever overflows inside.
inline constexpr float loudestReverbInput = 1e15F;

/// The plain code, for 1 to 32 frames of one block of the grid; the reference for the other.
void processReverbBlock(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Any number of whole blocks, in the widest vectors of the machine.
void processReverbBlocks(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Goes on by `frames` frames that have been rendered.
void advanceReverb(ReverbTank::State &state, std::uint32_t frames) noexcept;

} // namespace quorbel
