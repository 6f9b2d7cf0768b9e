// For inclusion by code that is compiled once per vector target, after Highway's own headers; hence
// the guard that changes with the target.
#if defined(QUORBEL_TANH_SHAPER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QUORBEL_TANH_SHAPER_INL_H
#undef QUORBEL_TANH_SHAPER_INL_H
#else
#define QUORBEL_TANH_SHAPER_INL_H
#endif

#include <hwy/highway.h>
// After it.
#include <hwy/contrib/math/math-inl.h>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {

/// tanh(drive · x) / drive
template <typename Vector> HWY_INLINE Vector shapedByTanh(Vector x, Vector drive) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::DFromV<Vector> tag;
    return hn::Div(hn::Tanh(tag, hn::Mul(drive, x)), drive);
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
