#pragma once

#include <cstdint>

namespace quorbel {

/// The big-endian value of four ASCII characters.
consteval std::uint32_t fourCharCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

/// Identifies a kind of audio unit.
struct ComponentDescription {
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    std::uint32_t manufacturer = 0;
    std::uint32_t flags = 0;
    std::uint32_t flagsMask = 0;

    friend constexpr bool operator==(const ComponentDescription &,
                                     const ComponentDescription &) = default;
};

} // namespace quorbel
