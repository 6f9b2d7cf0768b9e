#include "Storm.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace quorbel::desktop {
namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int usualStorms = 600;
#else
constexpr int usualStorms = 20'000;
#endif
constexpr int slowStorms = 2'000'000;
constexpr int parts = 2; ///< run in parallel
constexpr int stormLength = 200;

std::uint64_t number(const char *variable, std::uint64_t otherwise) {
    const char *text = std::getenv(variable);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

/// One part of the storms; QUORBEL_STORMS sets their total number, QUORBEL_STORM the first seed.
class Storms : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Part, Storms, testing::Range(0, parts));

TEST_P(Storms, LetEveryStreamBeHeardOnceAndPutBack) {
    const bool isSlow = std::getenv("QUORBEL_SLOW_TESTS") != nullptr;
    const std::uint64_t storms =
        (number("QUORBEL_STORMS", isSlow ? slowStorms : usualStorms) + parts - 1) / parts;
    const std::uint64_t first =
        number("QUORBEL_STORM", 1) + static_cast<std::uint64_t>(GetParam()) * storms;
    for (std::uint64_t seed = first; seed < first + storms; ++seed) {
        const Storm storm = Storm::ofSeed(seed, stormLength);
        const std::string wrong = run(storm);
        if (wrong.empty())
            continue;
        const Storm small = reduced(storm);
        FAIL() << wrong << "\nreduced: " << run(small) << "\n" << small.text();
    }
}

} // namespace
} // namespace quorbel::desktop
