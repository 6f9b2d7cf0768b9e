#include "platform/dsp/reverb/ReverbBlock.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

constexpr std::uint32_t blockFrames = ReverbTank::blockFrames;
constexpr std::size_t lineCount = RoomDesign::lineCount;

using Samples = std::array<float, blockFrames>;

const float *before(const ReverbTank::Rings &rings, std::size_t ring, std::uint32_t position,
                    std::uint32_t delay) noexcept {
    return rings.ring(ring) + rings.slot(position - delay);
}

void write(const ReverbTank::Rings &rings, std::size_t ring, std::uint32_t position,
           const Samples &samples, std::uint32_t frames) noexcept {
    float *target = rings.ring(ring);
    const std::uint32_t slot = rings.slot(position);
    std::copy_n(samples.data(), frames, target + slot);
    if (slot < blockFrames)
        std::copy_n(samples.data(), frames, target + rings.length + slot);
}

void hear(ReverbTank::State &state, std::size_t channel, const float *input,
          std::uint32_t frames) noexcept {
    const std::uint32_t offset = state.position % blockFrames;
    Samples samples;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float heard = std::abs(input[i]) < loudestReverbInput ? input[i] : 0.0F;
        state.heard[channel][offset + i] = heard;
        samples[i] = heard - (state.baseline[channel] +
                              state.baselineStep[channel] * static_cast<float>(offset + i));
    }
    write(state.input, channel, state.position, samples, frames);
}

struct Branches {
    Samples p;
    Samples q;
};

void cross(Branches &branches, const float *delayed, std::uint32_t frames) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float p = branches.p[i];
        branches.p[i] = p + delayed[i];
        branches.q[i] = p - delayed[i];
    }
}

/// The first stage, on the pre-delayed input.
Branches entering(const ReverbTank::State &state, std::size_t channel,
                  std::uint32_t frames) noexcept {
    const std::uint32_t preDelay = state.design.preDelay;
    const std::uint32_t delay = state.design.stageDelays[channel][0];
    Branches branches;
    std::copy_n(before(state.input, channel, state.position, preDelay), frames, branches.p.data());
    cross(branches, before(state.input, channel, state.position, preDelay + delay), frames);
    return branches;
}

/// Stages `first` to `last`, excluded, of a diffuser.
Branches diffused(const ReverbTank::State &state, std::size_t channel, std::size_t first,
                  std::size_t last, Branches branches, std::uint32_t frames) noexcept {
    for (std::size_t stage = first; stage < last; ++stage) {
        const std::size_t ring = channel * (RoomDesign::stageCount - 1) + stage - 1;
        write(state.diffusers, ring, state.position, branches.q, frames);
        cross(
            branches,
            before(state.diffusers, ring, state.position, state.design.stageDelays[channel][stage]),
            frames);
    }
    return branches;
}

/// In place, without the factor 1/√8. (Natural order: row r has the sign of the parity of r AND c.)
void hadamard(std::array<Samples, lineCount> &x, std::uint32_t frames) noexcept {
    for (std::size_t half = 1; half < lineCount; half *= 2)
        for (std::size_t line = 0; line < lineCount; ++line) {
            if ((line & half) != 0)
                continue;
            for (std::uint32_t i = 0; i < frames; ++i) {
                const float a = x[line][i];
                const float b = x[line + half][i];
                x[line][i] = a + b;
                x[line + half][i] = a - b;
            }
        }
}

} // namespace

void processReverbBlock(ReverbTank::State &state, const ReverbTank::Block &block) noexcept {
    const RoomDesign &design = state.design;
    const std::uint32_t frames = block.frames;
    const std::uint32_t position = state.position;

    hear(state, 0, block.left, frames);
    hear(state, 1, block.right, frames);
    std::array<Branches, 2> early;
    std::array<Branches, 2> late;
    for (std::size_t channel = 0; channel < 2; ++channel) {
        early[channel] = diffused(state, channel, 1, RoomDesign::earlyStages,
                                  entering(state, channel, frames), frames);
        late[channel] = diffused(state, channel, RoomDesign::earlyStages, RoomDesign::stageCount,
                                 early[channel], frames);
    }

    std::array<Samples, lineCount> x;
    for (std::size_t line = 0; line < lineCount; ++line) {
        const std::uint32_t delay = design.lineDelays[line];
        const float *newer = before(state.lines, line, position, delay - design.spacing);
        const float *middle = before(state.lines, line, position, delay);
        const float *older = before(state.lines, line, position, delay + design.spacing);
        for (std::uint32_t i = 0; i < frames; ++i)
            x[line][i] =
                design.centre[line] * middle[i] + design.side[line] * (newer[i] + older[i]);
    }
    hadamard(x, frames);
    for (std::uint32_t i = 0; i < frames; ++i) {
        x[0][i] += late[0].p[i];
        x[1][i] += late[1].p[i];
        x[2][i] += late[0].q[i];
        x[3][i] += late[1].q[i];
        x[4][i] += late[1].q[i];
        x[5][i] -= late[0].q[i];
        x[6][i] -= late[1].p[i];
        x[7][i] += late[0].p[i];
    }
    // Turned by one, so that the matrix is not its own inverse.
    for (std::size_t line = 0; line < lineCount; ++line)
        write(state.lines, (line + 1) % lineCount, position, x[line], frames);

    for (std::uint32_t i = 0; i < frames; ++i) {
        block.wetLeft[i] = (design.earlyNear * early[0].p[i] + design.earlyFar * early[1].q[i]) +
                           design.late * x[0][i];
        block.wetRight[i] = (design.earlyNear * early[1].p[i] + design.earlyFar * early[0].q[i]) +
                            design.late * x[1][i];
    }
}

} // namespace quorbel
