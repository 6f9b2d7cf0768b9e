#pragma once

#include "soundserver/Recorder.h"

#include <iosfwd>

namespace quorbel::soundserver {

/// The faults of a received `Sequence`.
struct SequenceReport {
    std::size_t leadingSilence = 0; ///< frames before the first sound
    std::size_t frames = 0;         ///< from the first sound to the last
    std::size_t silent = 0;         ///< frames of silence between them
    std::size_t changed = 0; ///< frames that are no value of the sequence, or not on both channels
    std::size_t jumps = 0;   ///< places where the next value does not follow
    std::int64_t lost = 0;   ///< values left out at forward jumps
    std::int64_t repeated = 0;       ///< values heard again at backward jumps
    std::vector<std::size_t> faults; ///< every faulty frame of the recording

    [[nodiscard]] bool intact() const {
        return frames > 0 && silent == 0 && changed == 0 && jumps == 0;
    }

    static SequenceReport of(const Recording &recording);
};

std::ostream &operator<<(std::ostream &out, const SequenceReport &report);

} // namespace quorbel::soundserver
