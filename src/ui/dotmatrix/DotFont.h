#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <vector>

namespace quorbel {

/// A 5x7 dot font: digits, signs, capitals, and the small letters of units. Other small letters
/// appear as capitals. A missing character is a box in debug builds and a blank in others.
namespace dotFont {

constexpr int rows = 7;

/// One glyph: seven rows from the top; bit 4 of each row is the leftmost of `width` dots.
struct Glyph {
    int width = 5;
    std::array<std::uint8_t, rows> bits{};

    [[nodiscard]] bool lit(int column, int row) const { return (bits[row] >> (4 - column)) & 1; }
};

[[nodiscard]] Glyph glyph(QChar character);
[[nodiscard]] bool has(QChar character);

/// Width of a text in dots, with one dark column between characters.
[[nodiscard]] int columns(const QString &text);

} // namespace dotFont
} // namespace quorbel
