#pragma once

#include "platform/core/AudioBufferList.h"

#include <span>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace quorbel {

/// Stereo sound of a test.
struct Stereo {
    std::vector<float> left;
    std::vector<float> right;

    Stereo() = default;
    explicit Stereo(std::size_t frames) : left(frames), right(frames) {}
    [[nodiscard]] std::size_t frames() const { return left.size(); }
    [[nodiscard]] AudioBufferList view(std::size_t from = 0) {
        return {left.data() + from, right.data() + from};
    }
    friend bool operator==(const Stereo &, const Stereo &) = default;
};

/// `amplitude` · sin(2π hz n / sampleRate) in both channels.
inline Stereo sine(double hz, std::size_t frames, double amplitude = 0.5,
                   double sampleRate = 48000.0) {
    Stereo sound(frames);
    for (std::size_t i = 0; i < frames; ++i)
        sound.left[i] = sound.right[i] =
            static_cast<float>(amplitude * std::sin(2.0 * std::numbers::pi * hz *
                                                    static_cast<double>(i) / sampleRate));
    return sound;
}

/// Independent noise in both channels, evenly distributed.
inline Stereo noise(std::size_t frames, float amplitude = 0.5F, std::uint32_t seed = 1) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> sample(-amplitude, amplitude);
    Stereo sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        sound.left[i] = sample(random);
        sound.right[i] = sample(random);
    }
    return sound;
}

/// `sound` after `process(left, right, frames)` has changed it block by block.
template <typename Process>
Stereo inBlocks(Stereo sound, std::size_t blockFrames, const Process &process) {
    for (std::size_t done = 0; done < sound.frames(); done += blockFrames)
        process(sound.left.data() + done, sound.right.data() + done,
                static_cast<std::uint32_t>(std::min(blockFrames, sound.frames() - done)));
    return sound;
}

/// Largest difference between two sounds of the same length.
inline double difference(const Stereo &a, const Stereo &b) {
    double largest = 0.0;
    for (std::size_t i = 0; i < a.frames(); ++i)
        largest = std::max({largest, std::abs(double{a.left[i]} - double{b.left[i]}),
                            std::abs(double{a.right[i]} - double{b.right[i]})});
    return largest;
}

/// Power of the difference from a reference, in dB over the reference.
template <typename Sample>
double errorDB(const std::vector<float> &sound, const std::vector<Sample> &reference) {
    double error = 0.0;
    double level = 0.0;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        error += std::pow(double{sound[i]} - double{reference[i]}, 2);
        level += std::pow(double{reference[i]}, 2);
    }
    return 10.0 * std::log10(error / level);
}

/// Largest step from one sample to the next.
inline float largestStep(std::span<const float> sound) {
    float largest = 0.0F;
    for (std::size_t i = 1; i < sound.size(); ++i)
        largest = std::max(largest, std::abs(sound[i] - sound[i - 1]));
    return largest;
}

} // namespace quorbel
