#include "reverb/ReverbBlock.h"

#include <algorithm>
#include <cmath>

namespace quorbel {
namespace {

constexpr std::uint32_t blockFrames = ReverbTank::blockFrames;
constexpr std::size_t lineCount = RoomDesign::lineCount;

using Samples = std::array<float, blockFrames>;

const float *read(const ReverbTank::State &state, std::size_t head) noexcept {
    return state.memory + state.headRing[head] +
           ((state.position - state.headDelay[head]) & state.headMask[head]);
}

void write(const ReverbTank::State &state, const ReverbTank::Rings &rings, std::size_t ring,
           const Samples &samples, std::uint32_t frames) noexcept {
    std::copy_n(samples.data(), frames, rings.ring(ring) + (state.position & (rings.length - 1)));
}

void hear(ReverbTank::State &state, std::size_t channel, const float *input,
          std::uint32_t frames) noexcept {
    const float *baseline =
        state.baseline[channel].data() + state.position % ReverbTank::meanFrames;
    float *heard = state.heard[channel].data() + state.position % blockFrames;
    Samples samples;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const float sample = std::abs(input[i]) < loudestReverbInput ? input[i] : 0.0F;
        heard[i] += sample;
        samples[i] = sample - baseline[i];
    }
    write(state, state.input, channel, samples, frames);
}

/// Smooths the means over 128 frames by one pole at 20 Hz, far below the rate of the means.
void followBaseline(ReverbTank::State &state, std::size_t channel) noexcept {
    auto &heard = state.heard[channel];
    std::array<float, 8> sums; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    for (std::size_t i = 0; i < sums.size(); ++i)
        sums[i] = (heard[i] + heard[i + 8]) + (heard[i + 16] + heard[i + 24]);
    double sum = 0.0;
    for (const float part : sums)
        sum += static_cast<double>(part);
    heard = {};
    const double from = state.baselineTarget[channel];
    const double to = from + state.baselineCoefficient * (sum / ReverbTank::meanFrames - from);
    state.baselineTarget[channel] = to;
    const auto begin = static_cast<float>(from);
    const auto step = static_cast<float>((to - from) / ReverbTank::meanFrames);
    for (std::uint32_t i = 0; i < ReverbTank::meanFrames; ++i)
        state.baseline[channel][i] = begin + step * static_cast<float>(i);
}

/// Repeats the rings' beginning after their end if the block at `position` has changed it.
void repeatBeginning(const ReverbTank::Rings &rings, std::uint32_t position) noexcept {
    const std::uint32_t slot = position & (rings.length - 1);
    if (slot >= ReverbTank::Rings::repeatedFrames)
        return;
    for (std::size_t ring = 0; ring < rings.count; ++ring) {
        float *begin = rings.ring(ring) + slot;
        std::copy_n(begin, blockFrames, begin + rings.length);
    }
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

/// Runs the first stage on the pre-delayed input.
Branches entering(const ReverbTank::State &state, std::size_t channel,
                  std::uint32_t frames) noexcept {
    Branches branches; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    std::copy_n(read(state, ReverbTank::inputHead + channel), frames, branches.p.data());
    cross(branches, read(state, ReverbTank::delayedHead + channel), frames);
    return branches;
}

/// Runs stages `first` to `last`, excluded, of a diffuser.
Branches diffused(const ReverbTank::State &state, std::size_t channel, std::size_t first,
                  std::size_t last, Branches branches, std::uint32_t frames) noexcept {
    for (std::size_t stage = first; stage < last; ++stage) {
        const std::size_t ring = channel * ReverbTank::diffuserRings + stage - 1;
        write(state, state.diffusers, ring, branches.q, frames);
        cross(branches, read(state, ReverbTank::diffuserHead + ring), frames);
    }
    return branches;
}

/// Hadamard transform in place, without the factor 1/√8. (Natural order: the sign in row r and
/// column c is the parity of r AND c.)
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

    hear(state, 0, block.left, frames);
    hear(state, 1, block.right, frames);
    std::array<Branches, 2> early; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    std::array<Branches, 2> late;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    for (std::size_t channel = 0; channel < 2; ++channel) {
        early[channel] = diffused(state, channel, 1, RoomDesign::earlyStages,
                                  entering(state, channel, frames), frames);
        late[channel] = diffused(state, channel, RoomDesign::earlyStages, RoomDesign::stageCount,
                                 early[channel], frames);
    }

    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): filled below
    std::array<Samples, lineCount> x;
    for (std::size_t line = 0; line < lineCount; ++line) {
        const float *older = read(state, ReverbTank::lineHead + line);
        const float *middle = older + design.spacing;
        const float *newer = middle + design.spacing;
        for (std::uint32_t i = 0; i < frames; ++i)
            x[line][i] =
                design.centre[line] * middle[i] + design.side[line] * (newer[i] + older[i]);
    }
    hadamard(x, frames);
    std::array<Samples, 2> network; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    for (std::uint32_t i = 0; i < frames; ++i) {
        network[0][i] = (x[0][i] + x[1][i]) + (x[2][i] - x[3][i]);
        network[1][i] = (x[4][i] + x[5][i]) + (x[6][i] - x[7][i]);
        const float pSum = late[0].p[i] + late[1].p[i];
        const float pDifference = late[0].p[i] - late[1].p[i];
        const float qSum = late[0].q[i] + late[1].q[i];
        const float qDifference = late[0].q[i] - late[1].q[i];
        x[0][i] += pSum;
        x[1][i] += pDifference;
        x[2][i] += qSum;
        x[3][i] += qDifference;
        x[4][i] += qDifference;
        x[5][i] -= qSum;
        x[6][i] -= pDifference;
        x[7][i] += pSum;
    }
    // Rotates the lines by one, so that the matrix is not its own inverse.
    for (std::size_t line = 0; line < lineCount; ++line)
        write(state, state.lines, (line + 1) % lineCount, x[line], frames);

    const auto [dry, wet] = block.gains;
    const auto mixed = [&](std::size_t channel, std::uint32_t i) {
        const std::size_t other = 1 - channel;
        const float reflections =
            design.earlyNear * early[channel].p[i] + design.earlyFar * early[other].q[i];
        const float reverberation =
            design.diffuse * late[channel].p[i] + design.late * network[channel][i];
        return reflections + reverberation;
    };
    for (std::uint32_t i = 0; i < frames; ++i) {
        block.outLeft[i] = dry * block.left[i] + wet * mixed(0, i);
        block.outRight[i] = dry * block.right[i] + wet * mixed(1, i);
    }
}

void advanceReverb(ReverbTank::State &state, std::uint32_t frames) noexcept {
    state.position += frames;
    if (state.position % blockFrames != 0)
        return;
    const std::uint32_t written = state.position - blockFrames;
    for (const ReverbTank::Rings *rings : {&state.input, &state.diffusers, &state.lines})
        repeatBeginning(*rings, written);
    if (state.position % ReverbTank::meanFrames == 0) {
        followBaseline(state, 0);
        followBaseline(state, 1);
    }
}

} // namespace quorbel
