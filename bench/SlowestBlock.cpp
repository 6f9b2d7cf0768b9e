#include "SlowestBlock.h"

#include "WholeChain.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <vector>

namespace quorbel::bench {

void printSlowestBlock(std::uint32_t blocks) {
    constexpr std::uint32_t frames = 64;
    std::mt19937 random(1);
    std::uniform_real_distribution<float> uniform(-0.5F, 0.5F);
    std::vector<float> noise(48000);
    std::ranges::generate(noise, [&] { return uniform(random); });

    WholeChain chain;
    std::array<float, frames> left{};
    std::array<float, frames> right{};
    std::vector<float> microseconds(blocks);
    for (std::uint32_t block = 0; block < blocks; ++block) {
        const std::size_t begin = block * std::size_t{37} % (noise.size() - 2 * frames);
        std::copy_n(noise.data() + begin, frames, left.data());
        std::copy_n(noise.data() + begin + frames, frames, right.data());
        const auto start = std::chrono::steady_clock::now();
        chain.process(left.data(), right.data(), frames);
        const std::chrono::duration<float, std::micro> taken =
            std::chrono::steady_clock::now() - start;
        microseconds[block] = taken.count();
        chain.passTime(frames);
    }
    std::ranges::sort(microseconds);
    const auto at = [&](double share) {
        return microseconds[static_cast<std::size_t>(share * (blocks - 1))];
    };
    fmt::print("{} blocks of {} frames: slowest {:.1f} us, 99.9 % within {:.1f} us, median "
               "{:.2f} us; a block lasts {:.0f} us\n",
               blocks, frames, at(1.0), at(0.999), at(0.5), frames / 0.048);
}

} // namespace quorbel::bench
