#include "equalizer/SectionDesign.h"

#include "equalizer/AnalogPrototype.h"
#include "platform/dsp/LevenbergMarquardt.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <tuple>
#include <utility>

namespace quorbel {
namespace {

// The section is fitted: its squared magnitude, as a function of x = tan²(π f / sampleRate), is
//
//     G² · q(x; zero) / q(x; pole),   q(x; c, d) = (1 - x/c²)² + d² x/c²
//
// with a cutoff c and a damping d for the poles and for the zeros. A high pass has both zeros at 0
// Hz instead. The unknowns are logarithms, which keeps poles and zeros in the left half plane. G is
// exact at 0 Hz, except for the high pass, where it is the third unknown.
//
// Levenberg-Marquardt minimises the difference of log |H|² from the prototype's, over a grid that
// is linear in frequency and denser around the band. It starts from the prototype's poles and zeros
// mapped by z = exp(s / sampleRate): exact at low frequencies and close elsewhere.

using Unknowns = std::array<double, 4>;

struct Quadratic {
    double cutoff = 1.0;
    double damping = 1.0;

    [[nodiscard]] double power(double x) const {
        const double u = x / (cutoff * cutoff);
        return (1.0 - u) * (1.0 - u) + damping * damping * u;
    }

    /// d log(power) / d log(cutoff) and / d log(damping).
    [[nodiscard]] std::pair<double, double> slopes(double x) const {
        const double u = x / (cutoff * cutoff);
        const double squaredDamping = damping * damping;
        const double value = (1.0 - u) * (1.0 - u) + squaredDamping * u;
        return {2.0 * u * (2.0 * (1.0 - u) - squaredDamping) / value,
                2.0 * squaredDamping * u / value};
    }
};

/// Maps the roots of c2 s² + c1 s + c0 (s in units of the band's angular frequency) by z = exp(s ·
/// radiansPerSample) and returns them as a quadratic in j tan.
Quadratic matchedQuadratic(double c0, double c1, double c2, double radiansPerSample) {
    const double half = c1 / (2.0 * c2);
    const double discriminant = half * half - c0 / c2;
    const double a2 = std::exp(-2.0 * half * radiansPerSample);
    double a1 = 0.0;
    if (discriminant < 0.0) {
        a1 = -2.0 * std::exp(-half * radiansPerSample) *
             std::cos(std::sqrt(-discriminant) * radiansPerSample);
    } else {
        const double fast = half + std::sqrt(discriminant);
        const double slow = c0 / (c2 * fast);
        a1 = -std::exp(-fast * radiansPerSample) - std::exp(-slow * radiansPerSample);
    }
    const double atZero = 1.0 + a1 + a2;
    const double atNyquist = 1.0 - a1 + a2;
    return {.cutoff = std::sqrt(atZero / atNyquist),
            .damping = 2.0 * (1.0 - a2) / std::sqrt(atZero * atNyquist)};
}

struct GridPoint {
    double x = 0.0;      ///< tan²(π f / sampleRate)
    double target = 0.0; ///< log |H|² of the prototype
    double weight = 1.0;
};

// Weights by frequency, as a fraction of the sample rate: the inverse of the allowed error, at 48
// kHz 0.1 dB up to 10 kHz and 0.25 dB up to 20 kHz. Passes also count in the stop band, down to
// about -40 dB, but hardly above 18 kHz.
constexpr double gridTop = 0.46;
constexpr int linearPoints = 28;
constexpr int bandPointsPerSide = 12;

double shapeWeight(double fraction) {
    if (fraction <= 0.215)
        return 1.0;
    return fraction <= 0.42 ? 0.4 : 0.05;
}

double passWeight(double fraction, double logPower) {
    double weight = fraction <= 0.38 ? 1.0 : 0.1;
    if (logPower < -9.2) // -40 dB
        weight *= 0.1;
    if (logPower < -13.8) // -60 dB
        weight *= 0.01;
    return weight;
}

class SectionFit {
  public:
    SectionFit(EqualizerFilterType type, double gainDB, double q, double frequencyRatio)
        : prototype_(AnalogPrototype::of(type, gainDB, q)),
          zerosAtZero_(type == EqualizerFilterType::highPass), unknownCount_(zerosAtZero_ ? 3 : 4) {
        makeGrid(type, q, frequencyRatio);
        start(type, frequencyRatio);
    }

    StateVariableDesign run() {
        double cost = costOf(unknowns_);
        double damping = 1e-3;
        for (int iteration = 0; iteration < maximumIterations; ++iteration) {
            const double before = cost;
            if (!improve(damping, cost) || before - cost < 1e-4 * before)
                break;
        }
        return result();
    }

  private:
    static constexpr int maximumIterations = 15;

    struct Model {
        double logGain = 0.0; ///< log G²
        Quadratic pole;
        Quadratic zero;
    };

    void makeGrid(EqualizerFilterType type, double q, double frequencyRatio) {
        const double octaves = 2.0 / std::numbers::ln2 * std::asinh(1.0 / (2.0 * q));
        const auto add = [&](double fraction) {
            const double logPower = std::log(prototype_.power(fraction / frequencyRatio));
            const double tangent = std::tan(std::numbers::pi * fraction);
            grid_[gridSize_++] = {.x = tangent * tangent,
                                  .target = logPower,
                                  .weight = hasGain(type) ? shapeWeight(fraction)
                                                          : passWeight(fraction, logPower)};
        };
        for (int i = 1; i <= linearPoints; ++i)
            add(gridTop * i / linearPoints);
        for (int i = -bandPointsPerSide; i <= bandPointsPerSide; ++i) {
            const double spread = 1.0 + std::abs(i) / static_cast<double>(bandPointsPerSide);
            const double fraction = frequencyRatio * std::exp2(octaves * i / 6.0 * spread);
            if (fraction < gridTop)
                add(fraction);
        }
    }

    void start(EqualizerFilterType type, double frequencyRatio) {
        const double radiansPerSample = 2.0 * std::numbers::pi * frequencyRatio;
        const AnalogPrototype &p = prototype_;
        const Quadratic pole = matchedQuadratic(p.d0, p.d1, p.d2, radiansPerSample);
        Quadratic zero;
        if (hasGain(type)) {
            zero = matchedQuadratic(p.n0, p.n1, p.n2, radiansPerSample);
            logGain_ = 2.0 * std::log(p.n0 / p.d0);
        } else if (!zerosAtZero_) {
            // Matches the prototype's value at half the sample rate.
            const double atNyquist = p.power(0.5 / frequencyRatio);
            zero = {.cutoff = std::max(pole.cutoff / std::pow(atNyquist, 0.25), 0.3),
                    .damping = 2.0};
        }
        unknowns_ = {std::log(pole.cutoff), std::log(pole.damping), std::log(zero.cutoff),
                     std::log(zero.damping)};
        if (zerosAtZero_)
            unknowns_[2] = 0.0;
    }

    [[nodiscard]] Model modelOf(const Unknowns &u) const {
        Model model;
        model.pole = {.cutoff = std::exp(u[0]), .damping = std::exp(u[1])};
        if (zerosAtZero_) {
            model.logGain = 2.0 * u[2] - 4.0 * u[0];
        } else {
            model.logGain = logGain_;
            model.zero = {.cutoff = std::exp(u[2]), .damping = std::exp(u[3])};
        }
        return model;
    }

    [[nodiscard]] double errorAt(const Model &model, const GridPoint &point) const {
        const double zeros = zerosAtZero_ ? point.x * point.x : model.zero.power(point.x);
        return model.logGain + std::log(zeros / model.pole.power(point.x)) - point.target;
    }

    [[nodiscard]] double costOf(const Unknowns &unknowns) const {
        const Model model = modelOf(unknowns);
        double sum = 0.0;
        for (std::size_t i = 0; i < gridSize_; ++i) {
            const double error = errorAt(model, grid_[i]) * grid_[i].weight;
            sum += error * error;
        }
        return sum;
    }

    /// Makes one step. Returns false if no step lowers the cost.
    bool improve(double &damping, double &cost) {
        const Model model = modelOf(unknowns_);
        std::array<Unknowns, 4> normal{};
        Unknowns gradient{};
        for (std::size_t i = 0; i < gridSize_; ++i) {
            const GridPoint &point = grid_[i];
            const auto [poleCutoff, poleDamping] = model.pole.slopes(point.x);
            Unknowns slope{-poleCutoff, -poleDamping, 0.0, 0.0};
            if (zerosAtZero_) {
                slope[0] -= 4.0;
                slope[2] = 2.0;
            } else {
                std::tie(slope[2], slope[3]) = model.zero.slopes(point.x);
            }
            const double squaredWeight = point.weight * point.weight;
            const double error = errorAt(model, point);
            for (std::size_t row = 0; row < unknownCount_; ++row) {
                gradient[row] += squaredWeight * slope[row] * error;
                for (std::size_t column = 0; column < unknownCount_; ++column)
                    normal[row][column] += squaredWeight * slope[row] * slope[column];
            }
        }
        const auto accept = [&](const Unknowns &step) {
            Unknowns next = unknowns_;
            for (std::size_t i = 0; i < unknownCount_; ++i)
                next[i] += std::clamp(-step[i], -1.0, 1.0);
            const double nextCost = costOf(next);
            if (!(nextCost < cost)) // true for NaN, too
                return false;
            unknowns_ = next;
            cost = nextCost;
            return true;
        };
        return levenbergMarquardtStep(normal, gradient, unknownCount_, {}, damping, accept);
    }

    [[nodiscard]] StateVariableDesign result() const {
        const Model model = modelOf(unknowns_);
        if (zerosAtZero_)
            return {.cutoff = model.pole.cutoff,
                    .damping = model.pole.damping,
                    .high = std::exp(unknowns_[2]),
                    .band = 0.0,
                    .low = 0.0};
        const double gain = std::exp(0.5 * model.logGain);
        const double ratio = model.pole.cutoff / model.zero.cutoff;
        return {.cutoff = model.pole.cutoff,
                .damping = model.pole.damping,
                .high = gain * ratio * ratio,
                .band = gain * model.zero.damping * ratio,
                .low = gain};
    }

    AnalogPrototype prototype_;
    bool zerosAtZero_;
    std::size_t unknownCount_;
    double logGain_ = 0.0;
    Unknowns unknowns_{};
    std::array<GridPoint, linearPoints + 2 * bandPointsPerSide + 1> grid_{};
    std::size_t gridSize_ = 0;
};

} // namespace

double clampedGainDB(float gainDB) {
    const double gain = std::isnan(gainDB) ? 0.0
                                           : std::clamp(static_cast<double>(gainDB),
                                                        minimumBandGainDB, maximumBandGainDB);
    return std::abs(gain) < flatGainDB ? 0.0 : gain;
}

double clampedFrequencyHz(float frequencyHz, double sampleRate) {
    return std::clamp(static_cast<double>(frequencyHz), minimumBandFrequencyHz,
                      maximumBandFrequencyRatio * sampleRate);
}

double clampedQuality(float bandwidthOctaves) {
    return qualityFromBandwidth(std::clamp(static_cast<double>(bandwidthOctaves),
                                           minimumBandwidthOctaves, maximumBandwidthOctaves));
}

std::optional<StateVariableDesign> designBand(const EqualizerBandSettings &settings,
                                              double sampleRate) {
    if (settings.bypass || std::isnan(settings.frequencyHz) ||
        std::isnan(settings.bandwidthOctaves))
        return std::nullopt;
    const double gainDB = hasGain(settings.filterType) ? clampedGainDB(settings.gainDB) : 0.0;
    if (hasGain(settings.filterType) && gainDB == 0.0)
        return std::nullopt;
    return SectionFit(settings.filterType, gainDB, clampedQuality(settings.bandwidthOctaves),
                      clampedFrequencyHz(settings.frequencyHz, sampleRate) / sampleRate)
        .run();
}

} // namespace quorbel
