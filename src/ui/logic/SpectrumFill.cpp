#include "ui/logic/SpectrumFill.h"

#include <algorithm>
#include <cstddef>

namespace quorbel {

std::vector<double> filledLevels(std::vector<double> levels, const std::vector<bool> &isMeasured) {
    const std::size_t count = levels.size();
    for (std::size_t band = 0; band < count; ++band) {
        if (isMeasured[band])
            continue;
        std::size_t end = band; // of the gap
        while (end < count && !isMeasured[end])
            ++end;
        if (end == count && band == 0)
            break; // nothing to take from
        const double before = band > 0 ? levels[band - 1] : levels[end];
        const double after = end < count ? levels[end] : before;
        const double steps = static_cast<double>(end - band + 1);
        for (std::size_t at = band; at < end; ++at)
            levels[at] = before + (after - before) * static_cast<double>(at - band + 1) / steps;
        band = end;
    }
    return levels;
}

} // namespace quorbel
