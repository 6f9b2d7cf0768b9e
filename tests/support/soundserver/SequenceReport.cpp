#include "support/soundserver/SequenceReport.h"

#include "support/soundserver/Sounds.h"

#include <cmath>
#include <optional>
#include <ostream>

namespace quorbel::soundserver {
namespace {

std::optional<std::int64_t> indexOf(float left, float right) {
    const float index =
        (left - Sequence::first) / Sequence::step; // exact for every value of the sequence
    const bool belongs = left == right && index >= 0.0F &&
                         index < static_cast<float>(Sequence::length) && index == std::floor(index);
    return belongs ? std::optional(static_cast<std::int64_t>(index)) : std::nullopt;
}

} // namespace

SequenceReport SequenceReport::of(const Recording &recording) {
    SequenceReport report;
    const auto isSilent = [&](std::size_t frame) {
        return recording.left[frame] == 0.0F && recording.right[frame] == 0.0F;
    };
    std::size_t begin = 0;
    std::size_t end = recording.frames();
    while (begin < end && isSilent(begin))
        ++begin;
    while (end > begin && isSilent(end - 1))
        --end;
    report.leadingSilence = begin;
    report.frames = end - begin;

    std::optional<std::int64_t> last;
    for (std::size_t frame = begin; frame < end; ++frame) {
        if (isSilent(frame)) {
            ++report.silent;
            report.faults.push_back(frame);
            continue;
        }
        const auto index = indexOf(recording.left[frame], recording.right[frame]);
        if (!index) {
            ++report.changed;
            report.faults.push_back(frame);
            continue;
        }
        if (last) {
            // The shorter way round the end of the sequence.
            std::int64_t advance = (*index - *last + Sequence::length) % Sequence::length;
            advance -= advance > Sequence::length / 2 ? Sequence::length : 0;
            if (advance != 1) {
                ++report.jumps;
                report.lost += advance > 1 ? advance - 1 : 0;
                report.repeated += advance < 1 ? 1 - advance : 0;
                report.faults.push_back(frame);
            }
        }
        last = index;
    }
    return report;
}

std::ostream &operator<<(std::ostream &out, const SequenceReport &report) {
    out << report.frames << " frames after " << report.leadingSilence
        << " silent ones: " << report.silent << " silent, " << report.changed << " changed, "
        << report.jumps << " jumps (" << report.lost << " lost, " << report.repeated
        << " repeated)";
    if (!report.faults.empty())
        out << ", the first at frame " << report.faults.front();
    return out;
}

} // namespace quorbel::soundserver
