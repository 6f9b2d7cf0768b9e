#include "equalizer/SectionBatch.h"

#include "equalizer/SectionCascade.h"

namespace quorbel {

void SectionBatch::add(const SectionCoefficients &section, SectionState &left,
                       SectionState &right) noexcept {
    if (count_ == capacity)
        run();
    sections_[count_] = section;
    leftStates_[count_] = left;
    rightStates_[count_] = right;
    leftOwners_[count_] = &left;
    rightOwners_[count_] = &right;
    ++count_;
}

void SectionBatch::scale(float gain) noexcept {
    if (gain == 1.0F)
        return;
    if (count_ > 0) {
        SectionCoefficients &last = sections_[count_ - 1];
        last.direct *= gain;
        last.first *= gain;
        last.second *= gain;
        return;
    }
    for (std::uint32_t i = 0; i < frames_; ++i) {
        left_[i] *= gain;
        right_[i] *= gain;
    }
}

void SectionBatch::run() noexcept {
    if (count_ > 0)
        processCascade({sections_.data(), leftStates_.data(), rightStates_.data(), count_}, left_,
                       right_, frames_);
    for (std::size_t i = 0; i < count_; ++i) {
        *leftOwners_[i] = leftStates_[i];
        *rightOwners_[i] = rightStates_[i];
    }
    count_ = 0;
}

} // namespace quorbel
