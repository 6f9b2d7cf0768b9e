#include "Storm.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace quorbel::desktop {
namespace {

using enum StormEvent::Kind;

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

// A PulseAudio client may start while the only device is away for a moment, as a headset is that
// changes its profile.
TEST(Storms, ADeviceThatIsBackAtOnceLetsNoClientHang) {
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        const Storm storm{seed,
                          {{.kind = unplug, .b = 0, .at = 201'000},
                           {.kind = start, .at = 400'000},
                           {.kind = startApplication, .a = 2, .at = 450'000},
                           {.kind = unplug, .b = 1, .at = 451'500},
                           {.kind = plug, .b = 1, .c = 50, .at = 455'000}}};
        ASSERT_EQ(run(storm), "") << "seed " << seed;
    }
}

} // namespace
} // namespace quorbel::desktop
