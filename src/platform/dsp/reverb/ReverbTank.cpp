#include "platform/dsp/reverb/ReverbTank.h"

#include "platform/dsp/reverb/ReverbBlock.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <numbers>

namespace quorbel {
namespace {

constexpr double lowestHz = 20.0;

/// Of memory cleared per frame. At 48 kHz all of it takes some 60 ms.
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
        assert(design.lineDelays.front() - design.spacing >= blockFrames);
    }
    const auto rings = [](std::uint32_t longestDelay) {
        return Rings{.memory = nullptr, .length = std::bit_ceil(longestDelay + blockFrames)};
    };
    state_ = State{};
    state_.input = rings(longestInput);
    state_.diffusers = rings(longestStage);
    state_.lines = rings(longestLine);
    const std::size_t inputSize = 2 * state_.input.stride();
    const std::size_t diffuserSize = 2 * (RoomDesign::stageCount - 1) * state_.diffusers.stride();
    const std::size_t lineSize = RoomDesign::lineCount * state_.lines.stride();
    memory_.assign(inputSize + diffuserSize + lineSize, 0.0F);
    state_.input.memory = memory_.data();
    state_.diffusers.memory = state_.input.memory + inputSize;
    state_.lines.memory = state_.diffusers.memory + diffuserSize;
    cleared_ = memory_.size();
    baselineCoefficient_ =
        1.0 - std::exp(-2.0 * std::numbers::pi * lowestHz * blockFrames / sampleRate);
}

void ReverbTank::start(const RoomDesign &design) noexcept {
    assert(isClear());
    state_.design = design;
    state_.position = 0;
    state_.baseline = {};
    state_.baselineStep = {};
    baselineTarget_ = {};
}

void ReverbTank::process(const float *left, const float *right, float *wetLeft, float *wetRight,
                         std::uint32_t frames) noexcept {
    cleared_ = 0;
    while (frames > 0) {
        const std::uint32_t count = std::min(frames, blockFrames - state_.position % blockFrames);
        const Block block{left, right, wetLeft, wetRight, count};
        if (count == blockFrames && code_ == Code::vector)
            processReverbBlockVector(state_, block);
        else
            processReverbBlock(state_, block);
        state_.position += count;
        if (state_.position % blockFrames == 0)
            finishBlock();
        left += count;
        right += count;
        wetLeft += count;
        wetRight += count;
        frames -= count;
    }
}

void ReverbTank::finishBlock() noexcept {
    // A block's mean is a sample of everything far below 3 kHz; one pole at 20 Hz follows it.
    for (std::size_t channel = 0; channel < 2; ++channel) {
        std::array<float, blockFrames> sums = state_.heard[channel];
        for (std::size_t half = blockFrames / 2; half > 0; half /= 2)
            for (std::size_t i = 0; i < half; ++i)
                sums[i] += sums[i + half];
        const double mean = static_cast<double>(sums[0]) / blockFrames;
        const double from = baselineTarget_[channel];
        const double to = from + baselineCoefficient_ * (mean - from);
        baselineTarget_[channel] = to;
        state_.baseline[channel] = static_cast<float>(from);
        state_.baselineStep[channel] = static_cast<float>((to - from) / blockFrames);
    }
}

void ReverbTank::clearSome(std::uint32_t frames) noexcept {
    const std::size_t count = std::min(frames * clearedPerFrame, memory_.size() - cleared_);
    std::fill_n(memory_.data() + cleared_, count, 0.0F);
    cleared_ += count;
}

} // namespace quorbel
