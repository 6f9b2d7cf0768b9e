#include "settings/interchange/BandFit.h"

#include "platform/dsp/LevenbergMarquardt.h"
#include "settings/interchange/BandResponse.h"
#include "settings/records/PlayedFilterType.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace quorbel {

namespace {

using Curve = std::vector<double>;

// 32 points per octave: three within the narrowest played band.
constexpr std::size_t gridPoints = 320;
constexpr std::size_t mostAtStart = 32;
constexpr double floorDB = -60.0;
constexpr int stepsBetween = 12; // after each removed band
constexpr int stepsAtEnd = 200;

const Curve &grid() {
    static const Curve frequencies = audibleFrequencies(gridPoints);
    return frequencies;
}

Curve responseOf(const EQBand &band) {
    Curve curve(gridPoints, 0.0);
    addBandResponseDB(band, grid(), curve);
    return curve;
}

Curve responseOf(const std::vector<EQBand> &bands) {
    Curve sum(gridPoints, 0.0);
    for (const EQBand &band : bands)
        addBandResponseDB(band, grid(), sum);
    return sum;
}

/// `response` − `target`, both limited to the floor.
double differenceAt(double response, double target) {
    return std::max(response, floorDB) - std::max(target, floorDB);
}

double costOf(const Curve &response, const Curve &target) {
    double sum = 0.0;
    for (std::size_t i = 0; i < gridPoints; ++i)
        sum += std::pow(differenceAt(response[i], target[i]), 2);
    return sum;
}

bool isPass(const EQBand &band) { return !hasGain(playedFilterType(band.filterType)); }

/// Bands during the fit, each with three bounded unknowns: ln f, gain in dB and ln Q.
class MovingBands {
  public:
    static constexpr std::size_t unknownsPerBand = 3;

    MovingBands(std::vector<EQBand> bands, Curve target)
        : bands_(std::move(bands)), target_(std::move(target)) {
        double largest = 0.0;
        for (const EQBand &band : bands_)
            largest = std::max(largest, std::abs(static_cast<double>(band.gainDB)));
        // The limit prevents a large boost and a large cut that cancel each other.
        largestGainDB_ = std::clamp(largest, 12.0, 24.0);
        for (const EQBand &band : bands_)
            curves_.push_back(responseOf(band));
    }

    [[nodiscard]] const std::vector<EQBand> &bands() const { return bands_; }

    void improve(int steps) {
        double cost = costOf(sum(), target_);
        double damping = 1e-3;
        for (int step = 0; step < steps; ++step) {
            const double before = cost;
            if (!improveOnce(damping, cost) || before - cost < 1e-7 * before)
                return;
        }
    }

    /// Removes the band whose removal leaves the smallest error before refitting.
    void dropTheLeastMissed() {
        const Curve whole = sum();
        std::size_t least = 0;
        double leastCost = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < bands_.size(); ++i) {
            Curve rest = whole;
            for (std::size_t point = 0; point < gridPoints; ++point)
                rest[point] -= curves_[i][point];
            const double cost = costOf(rest, target_);
            if (cost < leastCost) {
                leastCost = cost;
                least = i;
            }
        }
        bands_.erase(bands_.begin() + static_cast<std::ptrdiff_t>(least));
        curves_.erase(curves_.begin() + static_cast<std::ptrdiff_t>(least));
    }

  private:
    [[nodiscard]] Curve sum() const {
        Curve total(gridPoints, 0.0);
        for (const Curve &curve : curves_)
            for (std::size_t i = 0; i < gridPoints; ++i)
                total[i] += curve[i];
        return total;
    }

    [[nodiscard]] EQBand moved(const EQBand &band, const std::array<double, 3> &by) const {
        EQBand result = band;
        const auto scaled = [](float value, double logarithm, double lowest, double highest) {
            return static_cast<float>(
                std::clamp(static_cast<double>(value) * std::exp(std::clamp(logarithm, -0.5, 0.5)),
                           lowest, highest));
        };
        result.frequency = scaled(band.frequency, by[0], 10.0, 22000.0);
        if (!isPass(band))
            result.gainDB = static_cast<float>(
                std::clamp(static_cast<double>(band.gainDB) + std::clamp(by[1], -6.0, 6.0),
                           -largestGainDB_, largestGainDB_));
        result.q = scaled(band.q, by[2], 0.2, 20.0);
        return result;
    }

    /// Partial derivatives of the response at every point by each unknown, as finite differences.
    [[nodiscard]] std::vector<Curve> slopes() const {
        constexpr double step = 1e-3;
        std::vector<Curve> result;
        for (std::size_t i = 0; i < bands_.size(); ++i) {
            for (std::size_t unknown = 0; unknown < unknownsPerBand; ++unknown) {
                EQBand there = bands_[i];
                double taken = step;
                const auto shift = [&](float &value, double target) {
                    const auto before = static_cast<double>(value);
                    value = static_cast<float>(target);
                    taken = unknown == 1 ? static_cast<double>(value) - before
                                         : std::log(static_cast<double>(value) / before);
                };
                if (unknown == 0)
                    shift(there.frequency, static_cast<double>(there.frequency) * (1.0 + step));
                else if (unknown == 1)
                    shift(there.gainDB, static_cast<double>(there.gainDB) + 10.0 * step);
                else
                    shift(there.q, static_cast<double>(there.q) * (1.0 + step));
                Curve curve = responseOf(there);
                for (std::size_t point = 0; point < gridPoints; ++point)
                    curve[point] = (curve[point] - curves_[i][point]) / taken;
                result.push_back(std::move(curve));
            }
        }
        return result;
    }

    bool improveOnce(double &damping, double &cost) {
        const std::vector<Curve> slope = slopes();
        const Curve response = sum();
        const std::size_t n = slope.size();
        std::vector<Curve> normal(n, Curve(n));
        Curve gradient(n);
        Curve difference(gridPoints);
        Curve counted(gridPoints); // 0 at points below the floor, else 1
        for (std::size_t point = 0; point < gridPoints; ++point) {
            difference[point] = differenceAt(response[point], target_[point]);
            counted[point] = response[point] > floorDB ? 1.0 : 0.0;
        }
        for (std::size_t row = 0; row < n; ++row) {
            for (std::size_t point = 0; point < gridPoints; ++point)
                gradient[row] += counted[point] * slope[row][point] * difference[point];
            for (std::size_t column = 0; column <= row; ++column) {
                double product = 0.0;
                for (std::size_t point = 0; point < gridPoints; ++point)
                    product += counted[point] * slope[row][point] * slope[column][point];
                normal[row][column] = normal[column][row] = product;
            }
        }
        const auto accept = [&](const Curve &step) {
            std::vector<EQBand> next = bands_;
            std::vector<Curve> nextCurves;
            for (std::size_t i = 0; i < next.size(); ++i) {
                next[i] = moved(bands_[i], {-step[3 * i], -step[3 * i + 1], -step[3 * i + 2]});
                nextCurves.push_back(responseOf(next[i]));
            }
            std::swap(curves_, nextCurves);
            const double nextCost = costOf(sum(), target_);
            if (!(nextCost < cost)) { // also rejects NaN
                std::swap(curves_, nextCurves);
                return false;
            }
            bands_ = std::move(next);
            cost = nextCost;
            return true;
        };
        return levenbergMarquardtStep(normal, gradient, n, {.ridge = 1e-6, .smallestDamping = 1e-9},
                                      damping, accept);
    }

    std::vector<EQBand> bands_;
    Curve target_;
    std::vector<Curve> curves_; ///< response of each band
    double largestGainDB_ = 24.0;
};

double energyOf(const EQBand &band) { return costOf(responseOf(band), Curve(gridPoints, 0.0)); }

std::vector<EQBand> strongest(const std::vector<EQBand> &bands, std::size_t count) {
    std::vector<std::pair<double, std::size_t>> byEnergy;
    for (std::size_t i = 0; i < bands.size(); ++i)
        byEnergy.emplace_back(-energyOf(bands[i]), i);
    std::sort(byEnergy.begin(), byEnergy.end());
    std::vector<EQBand> result;
    for (std::size_t i = 0; i < std::min(count, bands.size()); ++i)
        result.push_back(bands[byEnergy[i].second]);
    return result;
}

float rounded(float value, double unit) {
    return static_cast<float>(std::round(static_cast<double>(value) / unit) * unit);
}

} // namespace

ResponseError responseError(const std::vector<EQBand> &bands,
                            const std::vector<EQBand> &reference) {
    const Curve response = responseOf(bands);
    const Curve target = responseOf(reference);
    ResponseError error;
    for (std::size_t i = 0; i < gridPoints; ++i)
        error.maximumDB = std::max(error.maximumDB, std::abs(differenceAt(response[i], target[i])));
    error.rmsDB = std::sqrt(costOf(response, target) / static_cast<double>(gridPoints));
    return error;
}

BandFit fitBands(const std::vector<EQBand> &bands, std::size_t count) {
    MovingBands moving(strongest(bands, mostAtStart), responseOf(bands));
    if (bands.size() > mostAtStart)
        moving.improve(stepsBetween);
    while (moving.bands().size() > count) {
        moving.dropTheLeastMissed();
        moving.improve(moving.bands().size() == count ? stepsAtEnd : stepsBetween);
    }
    BandFit fit{moving.bands(), {}};
    for (EQBand &band : fit.bands) {
        const double magnitude = std::floor(std::log10(static_cast<double>(band.frequency)));
        band.frequency = rounded(band.frequency, std::pow(10.0, magnitude - 3.0));
        band.gainDB = rounded(band.gainDB, 0.01);
        band.q = rounded(band.q, 0.001);
    }
    std::sort(fit.bands.begin(), fit.bands.end(),
              [](const EQBand &a, const EQBand &b) { return a.frequency < b.frequency; });
    fit.error = responseError(fit.bands, bands);
    return fit;
}

} // namespace quorbel
