#include "effects/cores/BassTracker.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

std::optional<float> BassTracker::estimate(const SampleRing &ring, std::uint64_t end,
                                           float sampleRate) {
    constexpr float lowestHz = 30.0F;
    constexpr float highestHz = 200.0F;
    constexpr double smallestPower = 0.001;
    constexpr int lastBin = static_cast<int>(PowerSpectrum::bins) - 1;

    if (!ring.snapshot(end, spectrum_.samples()))
        return std::nullopt;
    spectrum_.transform();

    const float binHz = sampleRate / static_cast<float>(PowerSpectrum::points);
    const int low = std::max(1, static_cast<int>(std::ceil(lowestHz / binHz)));
    const int high = std::min(static_cast<int>(std::floor(highestHz / binHz)), lastBin);
    if (low >= high)
        return std::nullopt;

    double power = 0.0;
    double moment = 0.0;
    for (int k = low; k <= high; ++k) {
        const double binPower = spectrum_.power(static_cast<std::size_t>(k));
        power += binPower;
        moment += static_cast<double>(binHz) * k * binPower;
    }
    if (!(power > smallestPower))
        return std::nullopt;
    return static_cast<float>(std::clamp(moment / power, 40.0, 150.0));
}

} // namespace quorbel
