#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What a fuzzer calls with every input, by libFuzzer's name for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace quorbel {

inline std::string_view textOf(const std::uint8_t *data, std::size_t size) {
    return {reinterpret_cast<const char *>(data), size};
}

/// Ends the program where a promise does not hold, in builds without assertions too.
inline void mustHold(bool condition, const char *promise) {
    if (condition)
        return;
    std::fprintf(stderr, "does not hold: %s\n", promise);
    std::abort();
}

} // namespace quorbel
