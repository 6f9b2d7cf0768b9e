#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quorbel::bench {

inline constexpr std::uint32_t hopFrames = 480; // 10 ms at 48 kHz
inline constexpr std::size_t switchHop = 150;   // the change comes before it
inline constexpr std::size_t hopCount = 350;
inline constexpr std::size_t windowHops = 10; // of a level

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

/// By how much `switched` exceeds the louder of the two ends at the worst moment after the switch,
/// in dB. Quiet moments (below -60 dB) are passed over.
[[nodiscard]] double excessDB(const LevelTrace &switched, const LevelTrace &one,
                              const LevelTrace &other);

} // namespace quorbel::bench
