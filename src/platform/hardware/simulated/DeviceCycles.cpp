#include "platform/hardware/simulated/DeviceCycles.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace quorbel::simulated {

DeviceCycles::DeviceCycles(Clock &clock, Pace pace) : clock_(clock), pace_(pace) {}

DeviceCycles::~DeviceCycles() { pause(); }

void DeviceCycles::pause() {
    // With `Pace::clock` all cycles run on the caller's thread.
    if (!thread_.joinable())
        return;
    leave_ = true;
    thread_.join();
    leave_ = false;
}

void DeviceCycles::resume(CyclePlan plan) {
    assert(!thread_.joinable() && !plan.blockFrames.empty() && plan.sampleRate > 0.0);
    const bool inStep =
        plan.sampleRate == plan_.sampleRate && plan.blockFrames == plan_.blockFrames;
    plan_ = std::move(plan);
    if (!inStep)
        block_ = 0;
    const std::uint32_t longest = *std::ranges::max_element(plan_.blockFrames);
    for (auto &channel : scratch_)
        channel.resize(std::max<std::size_t>(channel.size(), longest));

    if (plan_.isIdle()) {
        timer_.invalidate();
    } else if (pace_ == Pace::clock) {
        if (!inStep || !timer_.isSet())
            armTimer();
    } else {
        thread_ = std::thread([this] {
            while (!leave_) {
                cycle();
                std::this_thread::yield();
            }
        });
    }
}

double DeviceCycles::extraCycle() {
    if (!timer_.isSet())
        return 0.0;
    const double seconds = nextBlock() / plan_.sampleRate;
    cycle();
    return seconds;
}

void DeviceCycles::armTimer() {
    timer_ = Timer::once(clock_, nextBlock() / plan_.sampleRate, [this] {
        cycle();
        armTimer();
    });
}

std::uint32_t DeviceCycles::nextBlock() const {
    return plan_.blockFrames[block_ % plan_.blockFrames.size()];
}

void DeviceCycles::mix(const std::vector<std::shared_ptr<Playing>> &sounds, std::uint32_t frames) {
    for (auto &channel : scratch_)
        std::fill_n(channel.begin(), frames, 0.0F);
    for (const auto &playing : sounds) {
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            const double seconds = playing->seconds + frame / plan_.sampleRate;
            for (std::uint32_t channel = 0; channel < 2; ++channel)
                scratch_[channel][frame] += playing->sound(seconds, channel);
        }
        playing->seconds += frames / plan_.sampleRate;
    }
}

template <typename Call> void DeviceCycles::callOut(const Call &call) noexcept {
    if (plan_.watch != nullptr)
        plan_.watch->enter();
    call();
    if (plan_.watch != nullptr)
        plan_.watch->leave();
}

void DeviceCycles::cycle() noexcept {
    const std::uint32_t frames = nextBlock();
    ++block_;
    const AudioBufferList scratch(scratch_[0].data(), scratch_[1].data());

    if (!plan_.captures.empty()) {
        mix(plan_.captured, frames);
        const IOCycle cycle{.format = {.sampleRate = plan_.sampleRate, .channelCount = 2},
                            .input = scratch,
                            .frames = frames,
                            .hostSeconds = clock_.now(),
                            .willPlay = plan_.willPlay};
        for (IOClient *client : plan_.captures)
            callOut([&] { client->ioCycle(cycle); });
    }

    if (pace_ == Pace::threads) {
        for (RenderClient *client : plan_.renders)
            callOut([&] { client->renderCycle(scratch, frames); });
        return;
    }
    const std::size_t before = recording_.left.size();
    mix(plan_.heard, frames);
    recording_.left.insert(recording_.left.end(), scratch.data[0], scratch.data[0] + frames);
    recording_.right.insert(recording_.right.end(), scratch.data[1], scratch.data[1] + frames);
    for (RenderClient *client : plan_.renders) {
        callOut([&] { client->renderCycle(scratch, frames); });
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            recording_.left[before + frame] += scratch.data[0][frame];
            recording_.right[before + frame] += scratch.data[1][frame];
        }
    }
}

} // namespace quorbel::simulated
