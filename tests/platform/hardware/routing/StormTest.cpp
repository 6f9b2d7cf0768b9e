#include "Storm.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace quorbel::desktop {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int usualStorms = 600;
#else
constexpr int usualStorms = 12'000;
#endif
constexpr int stormLength = 200;

std::uint64_t number(const char *variable, std::uint64_t otherwise) {
    const char *text = std::getenv(variable);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

// QUORBEL_TRACE prints every message of a failing storm. QUORBEL_STORMS runs more of them,
// QUORBEL_STORM begins with another seed.
TEST(Routing, EveryStreamIsHeardOnceAndPutBackThroughEveryStorm) {
    const std::uint64_t first = number("QUORBEL_STORM", 1);
    const std::uint64_t storms = number("QUORBEL_STORMS", usualStorms);
    for (std::uint64_t seed = first; seed < first + storms; ++seed) {
        const Storm storm = Storm::ofSeed(seed, stormLength);
        const std::string wrong = run(storm);
        if (wrong.empty())
            continue;
        const Storm small = reduced(storm);
        isTraced = std::getenv("QUORBEL_TRACE") != nullptr;
        FAIL() << wrong << "\nreduced: " << run(small) << "\n" << small.text();
    }
}

} // namespace
} // namespace quorbel::desktop
