#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// The identity of a band or preset: 128 bits, compared as a whole. By default all zeroes.
class Uuid {
  public:
    constexpr Uuid() = default;
    /// The bytes in the order in which the text shows them.
    explicit constexpr Uuid(const std::array<std::uint8_t, 16> &bytes) : bytes_(bytes) {}

    /// A new random one (version 4).
    [[nodiscard]] static Uuid random();

    /// Reads the canonical text, eight-four-four-four-twelve hexadecimal digits in either case;
    /// nothing for any other text.
    [[nodiscard]] static std::optional<Uuid> fromText(std::string_view text);

    /// The canonical text, in upper case.
    [[nodiscard]] std::string text() const;

    [[nodiscard]] constexpr const std::array<std::uint8_t, 16> &bytes() const { return bytes_; }

    friend constexpr bool operator==(const Uuid &, const Uuid &) = default;

  private:
    std::array<std::uint8_t, 16> bytes_{};
};

} // namespace quorbel
