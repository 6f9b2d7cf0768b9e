#include "live/SteadySound.h"

#include "soundserver/Levels.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorbel::bench {

SteadyLevels levelsOf(const soundserver::Recording &recording) {
    return {soundserver::toneLevelDB(recording.left, SteadySound::hz[0], 48000.0),
            soundserver::toneLevelDB(recording.right, SteadySound::hz[1], 48000.0)};
}

std::size_t interruptions(const soundserver::Recording &recording, std::size_t quantum) {
    // Above the change by auto gain per period, below the jump of a lost cycle at any phase.
    const float threshold = 0.05F * soundserver::peak(recording.left);
    const std::vector<std::size_t> gaps = recording.framesAfterGaps();
    std::size_t count = 0;
    std::size_t end = 0; // of the last interruption
    for (std::size_t frame = SteadySound::period; frame < recording.frames(); ++frame) {
        const std::size_t before = frame - SteadySound::period;
        const auto gap = std::ranges::upper_bound(gaps, before);
        const bool missed = gap != gaps.end() && *gap <= frame;
        if (!missed && std::abs(recording.left[frame] - recording.left[before]) > threshold) {
            count += frame >= end ? 1 : 0;
            end = frame + quantum + SteadySound::period;
        }
    }
    return count;
}

} // namespace quorbel::bench
