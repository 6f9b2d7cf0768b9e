#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quorbel::bench {

inline constexpr std::uint32_t hopFrames = 480; // 10 ms at 48 kHz
inline constexpr std::size_t switchHop = 150;   // the switch precedes it
inline constexpr std::size_t hopCount = 350;
inline constexpr std::size_t windowHops = 10; // averaged per level

/// A stereo sound at 48 kHz.
struct LevelSound {
    std::string name{};
    std::vector<float> left{};
    std::vector<float> right{};
};

/// Pink noise and music, `hopCount` hops each.
[[nodiscard]] std::vector<LevelSound> levelSounds();

/// Levels of 100 ms in dB (K weighting of ITU-R BS.1770): the level at index i ends with hop
/// i + windowHops.
using LevelTrace = std::vector<double>;
[[nodiscard]] LevelTrace levelTraceOf(const LevelSound &sound);

/// Largest excess in dB of `switched` over the louder end after the switch. Skips levels below
/// -60 dB.
[[nodiscard]] double excessDB(const LevelTrace &switched, const LevelTrace &one,
                              const LevelTrace &other);

} // namespace quorbel::bench
