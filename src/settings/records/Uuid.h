#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorbel {

/// The 128-bit identity of a band or preset; all zeros by default.
class Uuid {
  public:
    constexpr Uuid() = default;
    /// Takes the bytes in the order of the text.
    explicit constexpr Uuid(const std::array<std::uint8_t, 16> &bytes) : bytes_(bytes) {}

    /// Makes a random UUID (version 4).
    [[nodiscard]] static Uuid random();

    /// Reads the canonical text, 8-4-4-4-12 hexadecimal digits in either case; returns none for any
    /// other text.
    [[nodiscard]] static std::optional<Uuid> fromText(std::string_view text);

    /// The canonical text, in upper case.
    [[nodiscard]] std::string text() const;

    [[nodiscard]] constexpr const std::array<std::uint8_t, 16> &bytes() const { return bytes_; }

    friend constexpr bool operator==(const Uuid &, const Uuid &) = default;

  private:
    std::array<std::uint8_t, 16> bytes_{};
};

} // namespace quorbel
