#include "effects/cores/Biquad.h"

#include <cmath>

namespace quorbel {

BiquadCoefficients lowPass(float w0, float alpha) noexcept {
    const float cosine = std::cos(w0);
    const float a0 = 1.0F + alpha;
    BiquadCoefficients c;
    c.b0 = (1.0F - cosine) * 0.5F / a0;
    c.b1 = (1.0F - cosine) / a0;
    c.b2 = c.b0;
    c.a1 = -2.0F * cosine / a0;
    c.a2 = (1.0F - alpha) / a0;
    return c;
}

BiquadCoefficients highPass(float w0, float alpha) noexcept {
    const float cosine = std::cos(w0);
    const float a0 = 1.0F + alpha;
    BiquadCoefficients c;
    c.b0 = (1.0F + cosine) * 0.5F / a0;
    c.b1 = -(1.0F + cosine) / a0;
    c.b2 = c.b0;
    c.a1 = -2.0F * cosine / a0;
    c.a2 = (1.0F - alpha) / a0;
    return c;
}

BiquadCoefficients peaking(float w0, float alpha, float amplitude) noexcept {
    const float a0 = 1.0F + alpha / amplitude;
    BiquadCoefficients c;
    c.b0 = (1.0F + alpha * amplitude) / a0;
    c.b1 = -2.0F * std::cos(w0) / a0;
    c.b2 = (1.0F - alpha * amplitude) / a0;
    c.a1 = c.b1;
    c.a2 = (1.0F - alpha / amplitude) / a0;
    return c;
}

} // namespace quorbel
