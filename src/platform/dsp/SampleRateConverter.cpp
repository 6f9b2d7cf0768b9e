#include "platform/dsp/SampleRateConverter.h"

#include "platform/dsp/ResamplerStage.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <deque>
#include <stdexcept>
#include <vector>

namespace quorbel {
namespace {

constexpr double lowestRate = 4000.0;
constexpr double highestRate = 384000.0;

// zita reduces the rate 16-fold at most; a larger ratio starts with an 8-fold stage.
constexpr std::uint64_t steepestRatio = 16;
constexpr std::uint64_t firstStageRatio = 8;

constexpr std::uint32_t chunkFrames = 256;

void interleave(const AudioBufferList &from, std::uint32_t start, std::uint32_t frames,
                std::uint32_t channels, float *to) noexcept {
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        const float *samples = channel < from.bufferCount ? from.data[channel] : nullptr;
        for (std::uint32_t i = 0; i < frames; ++i)
            to[i * channels + channel] = samples != nullptr ? samples[start + i] : 0.0F;
    }
}

bool isSilent(const AudioBufferList &input, std::uint32_t channels) noexcept {
    for (std::uint32_t channel = 0; channel < std::min(channels, input.bufferCount); ++channel)
        if (input.data[channel] != nullptr)
            return false;
    return true;
}

void separate(const float *from, std::uint32_t frames, std::uint32_t channels,
              const AudioBufferList &to, std::uint32_t start) noexcept {
    for (std::uint32_t channel = 0; channel < std::min(channels, to.bufferCount); ++channel)
        if (float *samples = to.data[channel]; samples != nullptr)
            for (std::uint32_t i = 0; i < frames; ++i)
                samples[start + i] = from[i * channels + channel];
}

} // namespace

struct SampleRateConverter::State {
    std::uint32_t channels = 0;
    std::deque<ResamplerStage> stages; // none: equal rates
    std::vector<float> input;
    std::vector<float> between;
    std::vector<float> output;

    /// Converts from `input` (or silence) to `output`.
    Progress processChunk(bool silent, std::uint32_t offered, std::uint32_t wanted) noexcept;
};

SampleRateConverter::SampleRateConverter(double sourceRate, double targetRate,
                                         std::uint32_t channels, std::uint32_t /*maximumFrames*/)
    : state_(std::make_unique<State>()) {
    const auto isSupported = [](double rate) {
        return rate >= lowestRate && rate <= highestRate && rate == std::floor(rate);
    };
    if (!isSupported(sourceRate) || !isSupported(targetRate))
        throw std::invalid_argument(fmt::format(
            "cannot convert from {} Hz to {} Hz: only whole rates from {} to {} Hz are supported",
            sourceRate, targetRate, lowestRate, highestRate));
    if (channels == 0 || channels > AudioBufferList::maximumBuffers)
        throw std::invalid_argument(fmt::format("cannot convert {} channels: 1 to {} are supported",
                                                channels, AudioBufferList::maximumBuffers));
    state_->channels = channels;
    const auto source = static_cast<std::uint64_t>(sourceRate);
    const auto target = static_cast<std::uint64_t>(targetRate);
    if (source == target)
        return;
    if (source > steepestRatio * target) {
        state_->stages.emplace_back(firstStageRatio, 1, channels);
        state_->stages.emplace_back(source, firstStageRatio * target, channels);
    } else {
        state_->stages.emplace_back(source, target, channels);
    }
    for (auto *buffer : {&state_->input, &state_->between, &state_->output})
        buffer->resize(std::size_t{chunkFrames} * channels);
}

SampleRateConverter::~SampleRateConverter() = default;

SampleRateConverter::Progress SampleRateConverter::process(const AudioBufferList &input,
                                                           std::uint32_t inputFrames,
                                                           const AudioBufferList &output,
                                                           std::uint32_t outputFrames) noexcept {
    State &state = *state_;
    Progress progress;
    if (state.stages.empty()) {
        const std::uint32_t frames = std::min(inputFrames, outputFrames);
        for (std::uint32_t channel = 0; channel < std::min(state.channels, output.bufferCount);
             ++channel) {
            const float *from = channel < input.bufferCount ? input.data[channel] : nullptr;
            float *to = output.data[channel];
            if (to != nullptr && from != nullptr)
                std::copy_n(from, frames, to);
            else if (to != nullptr)
                std::fill_n(to, frames, 0.0F);
        }
        return {frames, frames};
    }
    const bool silent = isSilent(input, state.channels);
    for (;;) {
        const std::uint32_t offered = std::min(inputFrames - progress.consumed, chunkFrames);
        const std::uint32_t wanted = std::min(outputFrames - progress.produced, chunkFrames);
        if (!silent)
            interleave(input, progress.consumed, offered, state.channels, state.input.data());
        const Progress chunk = state.processChunk(silent, offered, wanted);
        separate(state.output.data(), chunk.produced, state.channels, output, progress.produced);
        progress.consumed += chunk.consumed;
        progress.produced += chunk.produced;
        if (progress.produced == outputFrames || (chunk.consumed == 0 && chunk.produced == 0))
            return progress;
    }
}

SampleRateConverter::Progress
SampleRateConverter::State::processChunk(bool silent, std::uint32_t offered,
                                         std::uint32_t wanted) noexcept {
    const float *source = silent ? nullptr : input.data();
    if (stages.size() == 1) {
        const auto done = stages[0].process(source, offered, output.data(), wanted);
        return {done.consumed, done.produced};
    }
    // The first stage makes exactly the frames that the second needs, so no frames accumulate.
    Progress progress;
    for (;;) {
        const std::uint64_t needed = stages[1].inputFramesFor(wanted - progress.produced);
        const auto asked = static_cast<std::uint32_t>(std::min<std::uint64_t>(needed, chunkFrames));
        const float *rest = silent ? nullptr : source + std::size_t{progress.consumed} * channels;
        const auto first =
            stages[0].process(rest, offered - progress.consumed, between.data(), asked);
        const auto second = stages[1].process(
            between.data(), first.produced,
            output.data() + std::size_t{progress.produced} * channels, wanted - progress.produced);
        progress.consumed += first.consumed;
        progress.produced += second.produced;
        if (progress.produced == wanted || (first.consumed == 0 && second.produced == 0))
            return progress;
    }
}

std::uint64_t SampleRateConverter::inputFramesFor(std::uint64_t outputFrames) const noexcept {
    std::uint64_t frames = outputFrames;
    for (std::size_t i = state_->stages.size(); i > 0; --i)
        frames = state_->stages[i - 1].inputFramesFor(frames);
    return frames;
}

double SampleRateConverter::latencyFrames() const noexcept {
    const auto &stages = state_->stages;
    if (stages.empty())
        return 0.0;
    const double first = stages[0].latencyFrames();
    return stages.size() == 1 ? first : first + firstStageRatio * stages[1].latencyFrames();
}

void SampleRateConverter::reset() noexcept {
    for (ResamplerStage &stage : state_->stages)
        stage.reset();
}

} // namespace quorbel
