#include "platform/dsp/ResamplerStage.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <type_traits>

namespace quorbel {
namespace {

// zita's longest filter. Cutoff chosen by measurement between 44.1 and 48 kHz in both directions:
// 0.94 attenuates by 112 dB just above half the lower rate, zita's default by only 70 dB. 20 kHz
// passes within 0.005 dB.
constexpr unsigned halfLength = 96;
constexpr double relativeCutoff = 0.94;

// zita's maximum number of tabulated filters.
constexpr std::uint64_t longestTable = 1000;

} // namespace

ResamplerStage::ResamplerStage(std::uint64_t source, std::uint64_t target, std::uint32_t channels)
    : source_(source / std::gcd(source, target)), target_(target / std::gcd(source, target)),
      tabulated_(target_ <= longestTable) {
    const int refused =
        tabulated_
            ? exact_.setup(static_cast<unsigned>(source_), static_cast<unsigned>(target_), channels,
                           halfLength, relativeCutoff)
            : interpolated_.setup(static_cast<double>(target_) / static_cast<double>(source_),
                                  channels, halfLength, relativeCutoff);
    if (refused != 0)
        throw std::invalid_argument("this ratio of sample rates cannot be converted");
    latencyFrames_ = 0.5 * (tabulated_ ? exact_.inpsize() : interpolated_.inpsize());
    reset();
}

void ResamplerStage::reset() noexcept {
    producedInPeriod_ = 0;
    consumedInPeriod_ = 0;
    if (tabulated_)
        fillWithSilence(exact_);
    else
        fillWithSilence(interpolated_);
}

template <typename Engine> void ResamplerStage::fillWithSilence(Engine &engine) noexcept {
    engine.reset();
    if constexpr (std::is_same_v<Engine, VResampler>)
        engine.set_phase(0.5 / static_cast<double>(target_)); // see run
    engine.inp_count = static_cast<unsigned>(engine.inpsize()) - 1;
    engine.inp_data = nullptr; // zita reads null as silence
    engine.out_count = 1;      // not reached: the filter lacks one frame
    engine.out_data = nullptr;
    engine.process();
}

ResamplerStage::Progress ResamplerStage::process(const float *input, std::uint32_t inputFrames,
                                                 float *output,
                                                 std::uint32_t outputFrames) noexcept {
    return tabulated_ ? run(exact_, input, inputFrames, output, outputFrames)
                      : run(interpolated_, input, inputFrames, output, outputFrames);
}

template <typename Engine>
ResamplerStage::Progress ResamplerStage::run(Engine &engine, const float *input,
                                             std::uint32_t inputFrames, float *output,
                                             std::uint32_t outputFrames) noexcept {
    const auto channels = static_cast<std::uint32_t>(engine.nchan());
    Progress progress;
    for (;;) {
        // The interpolating resampler accumulates its phase in floating point. Starting half a step
        // off the input frames keeps rounding errors from crossing one. A reset once per period
        // keeps the frame count equal to integer arithmetic.
        const std::uint64_t leftInPeriod = target_ - producedInPeriod_;
        const auto wanted = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(outputFrames - progress.produced, leftInPeriod));
        const std::uint32_t offered = inputFrames - progress.consumed;
        engine.inp_count = offered;
        engine.inp_data = input == nullptr ? nullptr
                                           : const_cast<float *>(input) +
                                                 std::size_t{progress.consumed} * channels;
        engine.out_count = wanted;
        engine.out_data = output + std::size_t{progress.produced} * channels;
        engine.process();
        const std::uint32_t produced = wanted - engine.out_count;
        const std::uint32_t consumed = offered - engine.inp_count;
        progress.produced += produced;
        progress.consumed += consumed;
        producedInPeriod_ += produced;
        consumedInPeriod_ += consumed;
        if (producedInPeriod_ == target_) {
            producedInPeriod_ = 0;
            consumedInPeriod_ -= static_cast<std::int64_t>(source_);
            if constexpr (std::is_same_v<Engine, VResampler>)
                engine.set_phase(0.5 / static_cast<double>(target_));
        }
        const bool stuck = produced == 0 && consumed == 0;
        if (stuck || progress.produced == outputFrames || produced < wanted)
            return progress;
    }
}

std::uint64_t ResamplerStage::inputFramesFor(std::uint64_t outputFrames) const noexcept {
    if (outputFrames == 0)
        return 0;
    const std::uint64_t last = producedInPeriod_ + outputFrames - 1;
    const std::uint64_t needed = 1 + last / target_ * source_ + last % target_ * source_ / target_;
    const std::int64_t missing = static_cast<std::int64_t>(needed) - consumedInPeriod_;
    return missing > 0 ? static_cast<std::uint64_t>(missing) : 0;
}

} // namespace quorbel
