#include "platform/dsp/reverb/RoomMeasurement.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace quorbel::testing {
namespace {

using std::numbers::pi;

struct Biquad {
    double b0, b1, b2, a1, a2;

    void run(std::vector<double> &samples) const {
        double s1 = 0.0;
        double s2 = 0.0;
        for (double &sample : samples) {
            const double out = b0 * sample + s1;
            s1 = b1 * sample - a1 * out + s2;
            s2 = b2 * sample - a2 * out;
            sample = out;
        }
    }

    static Biquad pass(bool high, double frequency, double q, double sampleRate) {
        const double w = 2.0 * pi * frequency / sampleRate;
        const double alpha = std::sin(w) / (2.0 * q);
        const double a0 = 1.0 + alpha;
        const double corner = high ? 1.0 + std::cos(w) : 1.0 - std::cos(w);
        return {corner / 2.0 / a0, (high ? -corner : corner) / a0, corner / 2.0 / a0,
                -2.0 * std::cos(w) / a0, (1.0 - alpha) / a0};
    }
};

std::vector<double> widened(const std::vector<float> &samples) {
    return {samples.begin(), samples.end()};
}

/// Band-pass of a fourth-order Butterworth filter at each edge.
std::vector<double> band(const std::vector<float> &samples, double sampleRate, double frequency,
                         double fraction) {
    std::vector<double> result = widened(samples);
    const double edge = std::exp2(fraction / 2.0);
    for (const double q : {0.541196, 1.306563}) {
        Biquad::pass(true, frequency / edge, q, sampleRate).run(result);
        Biquad::pass(false, frequency * edge, q, sampleRate).run(result);
    }
    return result;
}

} // namespace

double decayTime(const std::vector<float> &response, double sampleRate, double frequency,
                 double fraction) {
    std::vector<double> energy = band(response, sampleRate, frequency, fraction);
    double sum = 0.0;
    for (std::size_t i = energy.size(); i-- > 0;)
        energy[i] = sum += energy[i] * energy[i];
    // Linear regression of level over time.
    double n = 0.0, sx = 0.0, sy = 0.0, sxx = 0.0, sxy = 0.0;
    for (std::size_t i = 0; i < energy.size(); ++i) {
        const double level = 10.0 * std::log10(energy[i] / sum + 1e-30);
        if (level > -5.0)
            continue;
        if (level < -35.0)
            break;
        const double time = static_cast<double>(i) / sampleRate;
        n += 1.0;
        sx += time;
        sy += level;
        sxx += time * time;
        sxy += time * level;
    }
    return -60.0 / ((n * sxy - sx * sy) / (n * sxx - sx * sx));
}

std::vector<double> echoDensity(const std::vector<float> &response, double sampleRate,
                                std::size_t hop) {
    const auto half = static_cast<std::ptrdiff_t>(0.010 * sampleRate);
    const double gaussianShare = std::erfc(1.0 / std::numbers::sqrt2);
    std::vector<double> result;
    for (std::size_t middle = 0; middle < response.size(); middle += hop) {
        const auto forWindow = [&](auto &&use) {
            for (std::ptrdiff_t offset = -half; offset <= half; ++offset) {
                const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(middle) + offset;
                if (at < 0 || at >= static_cast<std::ptrdiff_t>(response.size()))
                    continue;
                const double phase =
                    pi * static_cast<double>(offset) / static_cast<double>(half + 1);
                use(0.5 + 0.5 * std::cos(phase),
                    static_cast<double>(response[static_cast<std::size_t>(at)]));
            }
        };
        double weights = 0.0;
        double power = 0.0;
        forWindow([&](double weight, double sample) {
            weights += weight;
            power += weight * sample * sample;
        });
        const double deviation = std::sqrt(power / weights);
        double beyond = 0.0;
        forWindow([&](double weight, double sample) {
            if (std::abs(sample) > deviation)
                beyond += weight;
        });
        result.push_back(beyond / weights / gaussianShare);
    }
    return result;
}

double correlation(const Stereo &sound, std::size_t first, std::size_t last) {
    double ll = 0.0, rr = 0.0, lr = 0.0;
    for (std::size_t i = first; i < last; ++i) {
        const double l = static_cast<double>(sound.left[i]);
        const double r = static_cast<double>(sound.right[i]);
        ll += l * l;
        rr += r * r;
        lr += l * r;
    }
    return lr / std::sqrt(ll * rr);
}

double loudness(const Stereo &sound) {
    constexpr Biquad head{1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241,
                          0.73248077421585};
    constexpr Biquad lowCut{1.0, -2.0, 1.0, -1.99004745483398, 0.99007225036621};
    double power = 0.0;
    for (const std::vector<float> *channel : {&sound.left, &sound.right}) {
        std::vector<double> samples = widened(*channel);
        head.run(samples);
        lowCut.run(samples);
        for (const double sample : samples)
            power += sample * sample / static_cast<double>(samples.size());
    }
    return -0.691 + 10.0 * std::log10(power);
}

std::vector<float> pinkNoise(std::size_t frames, unsigned seed) {
    // Sums noises, each held twice as long as the one before (R. Voss; order by J. McCartney).
    constexpr unsigned rows = 14;
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-1.0F, 1.0F);
    std::array<float, rows> held{};
    for (float &value : held)
        value = uniform(random);
    std::vector<float> result(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        for (unsigned row = 0; row < rows; ++row)
            if (i % (std::size_t{2} << row) == (std::size_t{1} << row)) {
                held[row] = uniform(random);
                break;
            }
        float sum = uniform(random);
        for (const float value : held)
            sum += value;
        result[i] = sum / static_cast<float>(rows + 1);
    }
    return result;
}

} // namespace quorbel::testing
