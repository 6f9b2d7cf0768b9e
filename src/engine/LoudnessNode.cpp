#include "engine/LoudnessNode.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorbel {
namespace {

constexpr double windowSeconds = 3.0;

// The analog prototypes behind the coefficients that BS.1770 tables for 48 kHz.
constexpr double shelfHertz = 1681.974450955533;
constexpr double shelfDB = 3.999843853973347;
constexpr double shelfQ = 0.7071752369554196;
constexpr double cutHertz = 38.13547087602444;
constexpr double cutQ = 0.5003270373238773;

} // namespace

LoudnessNode::Section LoudnessNode::headShelf(double sampleRate) {
    const double k = std::tan(std::numbers::pi * shelfHertz / sampleRate);
    const double high = std::pow(10.0, shelfDB / 20.0);
    const double band = std::pow(high, 0.4996667741545416);
    const double a0 = 1.0 + k / shelfQ + k * k;
    return {(high + band * k / shelfQ + k * k) / a0, 2.0 * (k * k - high) / a0,
            (high - band * k / shelfQ + k * k) / a0, 2.0 * (k * k - 1.0) / a0,
            (1.0 - k / shelfQ + k * k) / a0};
}

LoudnessNode::Section LoudnessNode::lowCut(double sampleRate) {
    const double k = std::tan(std::numbers::pi * cutHertz / sampleRate);
    const double a0 = 1.0 + k / cutQ + k * k;
    return {1.0, -2.0, 1.0, 2.0 * (k * k - 1.0) / a0, (1.0 - k / cutQ + k * k) / a0};
}

Status LoudnessNode::allocateRenderResources(const StreamFormat &format, std::uint32_t) {
    sampleRate_ = format.sampleRate;
    sections_ = {headShelf(sampleRate_), lowCut(sampleRate_)};
    reset();
    return statusOK;
}

void LoudnessNode::reset() {
    memory_ = {};
    mean_ = 0.0;
    power_ = 0.0F;
}

Status LoudnessNode::render(const RenderTime &, AudioBufferList &buffers,
                            std::uint32_t frames) noexcept {
    double sum = 0.0;
    for (std::uint32_t channel = 0; channel < std::min<std::uint32_t>(buffers.bufferCount, 2);
         ++channel) {
        auto memory = memory_[channel];
        for (std::uint32_t i = 0; i < frames; ++i) {
            double sample = buffers.data[channel][i];
            for (std::size_t s = 0; s < sections_.size(); ++s) {
                const Section &section = sections_[s];
                const double out = section.b0 * sample + memory[s].s1;
                memory[s].s1 = section.b1 * sample - section.a1 * out + memory[s].s2;
                memory[s].s2 = section.b2 * sample - section.a2 * out;
                sample = out;
            }
            sum += sample * sample;
        }
        memory_[channel] = memory;
    }
    const double weight = 1.0 - std::exp(-(frames / sampleRate_) / windowSeconds);
    mean_ += weight * (0.5 * sum / frames - mean_);
    power_.store(static_cast<float>(mean_), std::memory_order_relaxed);
    return statusOK;
}

std::optional<float> matchingGainDB(float power, float wanted) {
    constexpr float quietest = 1e-7F;
    if (!(power > quietest) || !(wanted > quietest))
        return std::nullopt;
    return std::clamp(10.0F * std::log10(wanted / power), -24.0F, 24.0F);
}

} // namespace quorbel
