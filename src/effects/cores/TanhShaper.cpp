#include "effects/cores/TanhShaper.h"

#include "platform/dsp/VectorTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "effects/cores/TanhShaper.cpp"
// Highway requires this order.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "effects/cores/TanhShaper-inl.h"
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {

// Not noexcept, which Highway's dispatch table does not accept; nothing in it throws.
void shapeByTanhInLanes(float *samples, std::uint32_t frames, float drive) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::CappedTag<float, 16> tag;
    const auto lanes = static_cast<std::uint32_t>(hn::Lanes(tag));
    const auto factor = hn::Set(tag, drive);
    std::uint32_t i = 0;
    for (; i + lanes <= frames; i += lanes)
        hn::StoreU(shapedByTanh(hn::LoadU(tag, samples + i), factor), tag, samples + i);
    for (; i < frames; ++i)
        samples[i] = hn::GetLane(shapedByTanh(hn::Set(tag, samples[i]), factor));
}

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace quorbel {

HWY_EXPORT(shapeByTanhInLanes);

void shapeByTanh(float *samples, std::uint32_t frames, float drive) noexcept {
    HWY_DYNAMIC_DISPATCH(shapeByTanhInLanes)(samples, frames, drive);
}

} // namespace quorbel
#endif
