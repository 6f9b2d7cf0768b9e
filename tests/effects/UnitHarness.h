#pragma once

#include "effects/EffectUnit.h"
#include "platform/graph/UnitNode.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace quorbel {

/// Stereo sound of a test.
struct Sound {
    std::vector<float> left;
    std::vector<float> right;

    Sound() = default;
    explicit Sound(std::size_t frames) : left(frames), right(frames) {}
    [[nodiscard]] std::size_t frames() const { return left.size(); }
    [[nodiscard]] AudioBufferList view(std::size_t from = 0) {
        return {left.data() + from, right.data() + from};
    }
    friend bool operator==(const Sound &, const Sound &) = default;
};

inline Sound sine(double hz, std::size_t frames, double amplitude = 0.5,
                  double sampleRate = 48000.0) {
    Sound sound(frames);
    for (std::size_t i = 0; i < frames; ++i)
        sound.left[i] = sound.right[i] =
            static_cast<float>(amplitude * std::sin(2.0 * std::numbers::pi * hz *
                                                    static_cast<double>(i) / sampleRate));
    return sound;
}

/// Independent noise in both channels, evenly distributed.
inline Sound noise(std::size_t frames, float amplitude = 0.5F, std::uint32_t seed = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> sample(-amplitude, amplitude);
    Sound sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        sound.left[i] = sample(random);
        sound.right[i] = sample(random);
    }
    return sound;
}

/// Largest difference between two sounds of the same length.
inline double difference(const Sound &a, const Sound &b) {
    double largest = 0.0;
    for (std::size_t i = 0; i < a.frames(); ++i)
        largest = std::max({largest, std::abs(double{a.left[i]} - double{b.left[i]}),
                            std::abs(double{a.right[i]} - double{b.right[i]})});
    return largest;
}

/// Plays sound through a unit as the graph does.
class UnitHarness {
  public:
    explicit UnitHarness(std::unique_ptr<AudioUnit> unit)
        : node_(std::make_unique<UnitNode>(std::move(unit))) {}

    [[nodiscard]] AudioUnit &unit() { return node_->unit(); }

    Status allocate(double sampleRate = 48000.0, std::uint32_t channels = 2) {
        return node_->allocateRenderResources({sampleRate, channels}, maximumBlockFrames);
    }

    UnitHarness &set(ParameterAddress address, float value) {
        unit().parameterTree()->parameterWithAddress(address)->setValue(value);
        return *this;
    }

    /// One block in place, as a graph renders it.
    Status render(AudioBufferList &view, std::uint32_t frames) {
        node_->takeSettings();
        return node_->render({}, view, frames);
    }

    /// All of it, in blocks of `blockFrames`.
    Sound play(Sound sound, std::size_t blockFrames = 512) {
        for (std::size_t done = 0; done < sound.frames();) {
            const std::size_t count = std::min(blockFrames, sound.frames() - done);
            AudioBufferList view = sound.view(done);
            render(view, static_cast<std::uint32_t>(count));
            done += count;
        }
        return sound;
    }

    UnitNode &node() { return *node_; }

  private:
    std::unique_ptr<UnitNode> node_;
};

} // namespace quorbel
