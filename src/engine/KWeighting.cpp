#include "engine/KWeighting.h"

#include "platform/dsp/VectorTargets.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/KWeighting.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t channelCount = KWeighting::channelCount;
constexpr std::uint32_t tileFrames = 64;

using Floats = hn::CappedTag<float, channelCount>;
using Doubles = hn::CappedTag<double, channelCount>;
constexpr Floats floats;
constexpr Doubles doubles;
constexpr hn::Rebind<float, Doubles> halves; ///< as many floats as a vector has doubles

using Vector = hn::Vec<Doubles>;
constexpr std::size_t vectorCount = channelCount / hn::MaxLanes(doubles);

/// Interleaved frames of all channels.
struct alignas(64) Tile {
    float samples[tileFrames * channelCount];
};

HWY_INLINE void interleave(const KWeighting::Channels &channels, std::uint32_t begin,
                           std::uint32_t count, Tile &tile) {
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(floats));
    std::uint32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        hn::StoreInterleaved4(
            hn::LoadU(floats, channels[0] + begin + i), hn::LoadU(floats, channels[1] + begin + i),
            hn::LoadU(floats, channels[2] + begin + i), hn::LoadU(floats, channels[3] + begin + i),
            floats, tile.samples + i * channelCount);
    for (; i < count; ++i)
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            tile.samples[i * channelCount + channel] = channels[channel][begin + i];
}

/// Recursive part of a section's output, for the channels of one vector. The recursion is
/// latency-bound, so the previous frame's output is added last.
class Feedback {
  public:
    HWY_INLINE Feedback(double a1, double a2)
        : a1_(hn::Set(doubles, a1)), a2_(hn::Set(doubles, a2)) {}

    HWY_INLINE Vector output(Vector fed, Vector y1, Vector y2) const {
        return hn::Sub(hn::Sub(fed, hn::Mul(a2_, y2)), hn::Mul(a1_, y1));
    }

  private:
    Vector a1_;
    Vector a2_;
};

} // namespace

void squareInLanes(const KWeighting::Sections &sections, KWeighting::Memory &memory,
                   const KWeighting::Channels &channels, std::uint32_t frames,
                   KWeighting::Sums &sums) {
    const Feedback shelf(sections.shelf.a1, sections.shelf.a2);
    const Feedback cut(sections.cut.a1, sections.cut.a2);
    const Vector b1 = hn::Set(doubles, sections.shelf.b1);
    const Vector b2 = hn::Set(doubles, sections.shelf.b2);
    Tile tile; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    for (std::uint32_t begin = 0; begin < frames; begin += tileFrames) {
        const std::uint32_t count = std::min(tileFrames, frames - begin);
        interleave(channels, begin, count, tile);
        for (std::size_t vector = 0; vector < vectorCount; ++vector) {
            const std::size_t at = vector * hn::Lanes(doubles);
            Vector x1 = hn::LoadU(doubles, memory.input[0].data() + at);
            Vector x2 = hn::LoadU(doubles, memory.input[1].data() + at);
            Vector y1 = hn::LoadU(doubles, memory.shelved[0].data() + at);
            Vector y2 = hn::LoadU(doubles, memory.shelved[1].data() + at);
            Vector z1 = hn::LoadU(doubles, memory.weighted[0].data() + at);
            Vector z2 = hn::LoadU(doubles, memory.weighted[1].data() + at);
            Vector sum = hn::LoadU(doubles, sums.data() + at);
            for (std::uint32_t i = 0; i < count; ++i) {
                const Vector x =
                    hn::PromoteTo(doubles, hn::LoadU(halves, tile.samples + i * channelCount + at));
                const Vector y =
                    shelf.output(hn::Add(hn::Add(x, hn::Mul(b1, x1)), hn::Mul(b2, x2)), y1, y2);
                const Vector z = cut.output(hn::Sub(hn::Add(y, y2), hn::Add(y1, y1)), z1, z2);
                sum = hn::Add(sum, hn::Mul(z, z));
                x2 = x1;
                x1 = x;
                y2 = y1;
                y1 = y;
                z2 = z1;
                z1 = z;
            }
            hn::StoreU(x1, doubles, memory.input[0].data() + at);
            hn::StoreU(x2, doubles, memory.input[1].data() + at);
            hn::StoreU(y1, doubles, memory.shelved[0].data() + at);
            hn::StoreU(y2, doubles, memory.shelved[1].data() + at);
            hn::StoreU(z1, doubles, memory.weighted[0].data() + at);
            hn::StoreU(z2, doubles, memory.weighted[1].data() + at);
            hn::StoreU(sum, doubles, sums.data() + at);
        }
    }
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(squareInLanes);

namespace {

// Analog prototypes of the coefficients in BS.1770's tables for 48 kHz.
constexpr double shelfHertz = 1681.974450955533;
constexpr double shelfDB = 3.999843853973347;
constexpr double shelfQ = 0.7071752369554196;
constexpr double cutHertz = 38.13547087602444;
constexpr double cutQ = 0.5003270373238773;

} // namespace

KWeighting::KWeighting(double sampleRate) {
    const double s = std::tan(std::numbers::pi * shelfHertz / sampleRate);
    const double high = std::pow(10.0, shelfDB / 20.0);
    const double band = std::pow(high, 0.4996667741545416);
    const double shelfA0 = 1.0 + s / shelfQ + s * s;
    const double shelfB0 = high + band * s / shelfQ + s * s;
    sections_.shelf = {.b1 = 2.0 * (s * s - high) / shelfB0,
                       .b2 = (high - band * s / shelfQ + s * s) / shelfB0,
                       .a1 = 2.0 * (s * s - 1.0) / shelfA0,
                       .a2 = (1.0 - s / shelfQ + s * s) / shelfA0};
    scale_ = (shelfB0 / shelfA0) * (shelfB0 / shelfA0);
    const double c = std::tan(std::numbers::pi * cutHertz / sampleRate);
    const double cutA0 = 1.0 + c / cutQ + c * c;
    sections_.cut = {.a1 = 2.0 * (c * c - 1.0) / cutA0, .a2 = (1.0 - c / cutQ + c * c) / cutA0};
}

KWeighting::Sums KWeighting::squares(const Channels &channels, std::uint32_t frames) noexcept {
    Sums sums{};
    HWY_DYNAMIC_DISPATCH(squareInLanes)(sections_, memory_, channels, frames, sums);
    for (double &sum : sums)
        sum *= scale_;
    return sums;
}

} // namespace quorbel
#endif
