// Included after Highway's headers by code that is compiled once per vector target; hence the guard
// that changes with the target.
#if defined(QUORBEL_TANH_SHAPER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QUORBEL_TANH_SHAPER_INL_H
#undef QUORBEL_TANH_SHAPER_INL_H
#else
#define QUORBEL_TANH_SHAPER_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {

/// tanh as a fraction: saves a division for a caller that divides further.
template <typename Vector> struct TanhFraction {
    Vector numerator;
    Vector denominator;
};

/// Minimax rational approximation x · P(x²) / Q(x²) of tanh on ±9, beyond which tanh is 1 in 32
/// bits; both of degree 4. Relative error 2.1e-8, fitted by Lawson's iteration. All terms are
/// positive, so none cancel.
template <typename Vector> HWY_INLINE TanhFraction<Vector> tanhFraction(Vector x) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::DFromV<Vector> tag;
    const auto c = [tag](float value) HWY_ATTR { return hn::Set(tag, value); };
    const Vector clamped = hn::Max(hn::Min(x, c(9.0F)), c(-9.0F));
    const Vector square = hn::Mul(clamped, clamped);
    Vector p = hn::MulAdd(square, c(1.33535469422e-8F), c(2.06083288466e-5F));
    Vector q = hn::MulAdd(square, c(7.77611549992e-7F), c(0.000328556275295F));
    p = hn::MulAdd(square, p, c(0.00349554560588F));
    q = hn::MulAdd(square, q, c(0.0258768247247F));
    p = hn::MulAdd(square, p, c(0.13380991281F));
    q = hn::MulAdd(square, q, c(0.467143069576F));
    p = hn::MulAdd(square, p, c(1.0F));
    q = hn::MulAdd(square, q, c(1.0F));
    return {hn::Mul(clamped, p), q};
}

/// tanh(drive · x) / drive
template <typename Vector> HWY_INLINE Vector shapedByTanh(Vector x, Vector drive) {
    namespace hn = hwy::HWY_NAMESPACE;
    const TanhFraction<Vector> tanh = tanhFraction(hn::Mul(drive, x));
    return hn::Div(tanh.numerator, hn::Mul(tanh.denominator, drive));
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
