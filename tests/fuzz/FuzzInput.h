#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Entry point that libFuzzer calls with every input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace quorbel {

inline std::string_view textOf(const std::uint8_t *data, std::size_t size) {
    return {reinterpret_cast<const char *>(data), size};
}

/// Aborts the program if `condition` is false, also in builds without assertions.
inline void mustHold(bool condition, const char *promise) {
    if (condition)
        return;
    std::fprintf(stderr, "does not hold: %s\n", promise);
    std::abort();
}

} // namespace quorbel
