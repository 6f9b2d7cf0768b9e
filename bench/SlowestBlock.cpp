#include "SlowestBlock.h"

#include "EverythingOn.h"
#include "WholeChain.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <vector>

namespace quorbel::bench {

namespace {

constexpr std::uint32_t timedFrames = 64;

/// The whole chain on noise.
class TimedChain {
  public:
    TimedChain() : noise_(48000) {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> uniform(-0.5F, 0.5F);
        std::ranges::generate(noise_, [&] { return uniform(random); });
    }

    void setBands(const std::vector<EQBand> &bands) { chain_.setBands(bands); }

    /// Plays a block; returns its time in microseconds.
    float play() {
        const std::size_t begin = block_++ * std::size_t{37} % (noise_.size() - 2 * timedFrames);
        std::copy_n(noise_.data() + begin, timedFrames, left_.data());
        std::copy_n(noise_.data() + begin + timedFrames, timedFrames, right_.data());
        const auto start = std::chrono::steady_clock::now();
        chain_.process(left_.data(), right_.data(), timedFrames);
        const std::chrono::duration<float, std::micro> taken =
            std::chrono::steady_clock::now() - start;
        chain_.passTime(timedFrames);
        return taken.count();
    }

  private:
    WholeChain chain_;
    std::vector<float> noise_;
    std::uint32_t block_ = 0;
    std::array<float, timedFrames> left_{};
    std::array<float, timedFrames> right_{};
};

float median(std::vector<float> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

} // namespace

void printSlowestBlock(std::uint32_t blocks) {
    TimedChain chain;
    std::vector<float> microseconds(blocks);
    std::ranges::generate(microseconds, [&] { return chain.play(); });
    std::ranges::sort(microseconds);
    const auto at = [&](double share) {
        return microseconds[static_cast<std::size_t>(share * (blocks - 1))];
    };
    fmt::print("{} blocks of {} frames: slowest {:.1f} us, 99.9 % within {:.1f} us, median "
               "{:.2f} us; a block lasts {:.0f} us\n",
               blocks, timedFrames, at(1.0), at(0.999), at(0.5), timedFrames / 0.048);
}

void printSlowestBlockOfAGlide(std::uint32_t glides) {
    constexpr std::size_t glideBlocks = 16; // a glide lasts 20 ms
    constexpr std::size_t blocksEach = 32;
    TimedChain chain;
    std::vector<EQBand> bands = everythingOn().bands;
    std::array<std::vector<float>, blocksEach> microseconds;
    for (std::uint32_t glide = 0; glide < glides; ++glide) {
        for (EQBand &band : bands)
            band.gainDB = -band.gainDB;
        chain.setBands(bands);
        for (std::vector<float> &times : microseconds)
            times.push_back(chain.play());
    }
    float gliding = 0.0F;
    for (std::size_t block = 0; block < glideBlocks; ++block)
        gliding = std::max(gliding, median(microseconds[block]));
    const float resting = median(microseconds.back());
    fmt::print(
        "While ten bands glide, the slowest block takes {:.2f} us, {:.1f} times the {:.2f} us "
        "after it (medians of {} glides)\n",
        gliding, gliding / resting, resting, glides);
}

} // namespace quorbel::bench
