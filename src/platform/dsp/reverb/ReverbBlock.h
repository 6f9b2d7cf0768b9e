#pragma once

#include "platform/dsp/reverb/ReverbTank.h"

namespace quorbel {

/// Samples of this magnitude and beyond, and what is not a number, are taken as silence: nothing
/// finite then ever overflows inside.
inline constexpr float loudestReverbInput = 1e15F;

/// The plain code of a block and of any part of one; the reference for the other.
void processReverbBlock(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

/// Whole blocks only, in the widest vectors of the machine.
void processReverbBlockVector(ReverbTank::State &state, const ReverbTank::Block &block) noexcept;

} // namespace quorbel
