#include "reverb/ReverbTank.h"

#include "reverb/ReverbBlock.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <memory>
#include <numbers>

namespace quorbel {
namespace {

constexpr double lowestHz = 20.0;

/// Stores are the bottleneck: 16 floats within one cache line cost half as much as across two.
constexpr std::size_t cacheLine = 64;

/// Samples cleared per frame; at 48 kHz the whole memory takes about 60 ms.
constexpr std::size_t clearedPerFrame = 32;

} // namespace

void ReverbTank::prepare(double sampleRate) {
    std::uint32_t longestInput = 0;
    std::uint32_t longestStage = 0;
    std::uint32_t longestLine = 0;
    for (const RoomModel model : allRoomModels) {
        const RoomDesign design = RoomDesign::of(model, sampleRate);
        for (const auto &delays : design.stageDelays) {
            longestInput = std::max(longestInput, design.preDelay + delays[0]);
            longestStage = std::max(longestStage, std::ranges::max(delays));
        }
        longestLine = std::max(longestLine, design.lineDelays.back() + design.spacing);
        assert(2 * design.spacing <= blockFrames);
    }
    state_ = State{};
    state_.input.length = std::bit_ceil(longestInput + blockFrames);
    state_.diffusers.length = std::bit_ceil(longestStage + blockFrames);
    state_.lines.length = std::bit_ceil(longestLine + blockFrames);
    const std::array allRings{&state_.input, &state_.diffusers, &state_.lines};
    std::size_t size = 0;
    for (const Rings *rings : allRings)
        size += rings->size();
    storage_.assign(size + cacheLine / sizeof(float), 0.0F);
    void *begin = storage_.data();
    std::size_t space = storage_.size() * sizeof(float);
    memory_ = {static_cast<float *>(std::align(cacheLine, size * sizeof(float), begin, space)),
               size};
    cleared_ = size;
    state_.memory = memory_.data();
    float *rest = memory_.data();
    for (Rings *rings : allRings) {
        rings->memory = rest;
        rest += rings->size();
    }
    state_.baselineCoefficient =
        1.0 - std::exp(-2.0 * std::numbers::pi * lowestHz * meanFrames / sampleRate);
}

void ReverbTank::start(const RoomDesign &design) noexcept {
    assert(isClear());
    state_.design = design;
    state_.position = 0;
    state_.baseline = {};
    state_.heard = {};
    state_.baselineTarget = {};

    const auto place = [this](std::size_t head, const Rings &rings, std::size_t ring,
                              std::uint32_t delay) {
        state_.headRing[head] = static_cast<std::uint32_t>(rings.ring(ring) - state_.memory);
        state_.headMask[head] = rings.length - 1;
        state_.headDelay[head] = delay;
    };
    for (std::size_t channel = 0; channel < 2; ++channel) {
        const auto &stages = design.stageDelays[channel];
        place(inputHead + channel, state_.input, channel, design.preDelay);
        place(delayedHead + channel, state_.input, channel, design.preDelay + stages[0]);
        for (std::size_t i = 0; i < diffuserRings; ++i) {
            const std::size_t ring = channel * diffuserRings + i;
            place(diffuserHead + ring, state_.diffusers, ring, stages[i + 1]);
        }
    }
    for (std::size_t line = 0; line < RoomDesign::lineCount; ++line)
        place(lineHead + line, state_.lines, line, design.lineDelays[line] + design.spacing);
}

void ReverbTank::process(const Block &block) noexcept {
    cleared_ = 0;
    Block rest = block;
    while (rest.frames > 0) {
        Block part = rest;
        const std::uint32_t begun = state_.position % blockFrames;
        if (begun == 0 && rest.frames >= blockFrames && code_ == Code::vector) {
            part.frames -= rest.frames % blockFrames;
            processReverbBlocks(state_, part);
        } else {
            part.frames = std::min(rest.frames, blockFrames - begun);
            processReverbBlock(state_, part);
            advanceReverb(state_, part.frames);
        }
        rest.left += part.frames;
        rest.right += part.frames;
        rest.outLeft += part.frames;
        rest.outRight += part.frames;
        rest.frames -= part.frames;
    }
}

void ReverbTank::clearSome(std::uint32_t frames) noexcept {
    const std::size_t count = std::min(frames * clearedPerFrame, memory_.size() - cleared_);
    std::fill_n(memory_.data() + cleared_, count, 0.0F);
    cleared_ += count;
}

} // namespace quorbel
