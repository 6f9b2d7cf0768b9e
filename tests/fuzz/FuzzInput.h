#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Called by the fuzzer with every input; the name is libFuzzer's.
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
