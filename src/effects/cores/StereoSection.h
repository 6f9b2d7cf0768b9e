#pragma once

#include "effects/cores/Biquad.h"

#include <cstring>

namespace quorbel {

/// One second-order section for both channels.
struct StereoSection {
    BiquadState left;
    BiquadState right;
};

/// Every supported machine has four lanes, so there is no dispatch at run time.
using FourFloats [[gnu::vector_size(4 * sizeof(float))]] = float;

[[gnu::always_inline]] inline FourFloats loadFour(const float *samples) noexcept {
    FourFloats result;
    std::memcpy(&result, samples, sizeof result);
    return result;
}

[[gnu::always_inline]] inline void storeFour(FourFloats values, float *samples) noexcept {
    std::memcpy(samples, &values, sizeof values);
}

/// Runs two sections in the time of one: each is latency-bound by its recursion. The lanes are the
/// first section's left and right, then the second's; they compute the sums of BiquadState::process
/// in its order. Lives for one block; `save` writes the states back. [render]
class SectionPair {
  public:
    [[gnu::always_inline]] SectionPair(const BiquadCoefficients &firstCoefficients,
                                       const StereoSection &first,
                                       const BiquadCoefficients &secondCoefficients,
                                       const StereoSection &second) noexcept
        : b0_(of(firstCoefficients.b0, secondCoefficients.b0)),
          b1_(of(firstCoefficients.b1, secondCoefficients.b1)),
          b2_(of(firstCoefficients.b2, secondCoefficients.b2)),
          a1_(of(firstCoefficients.a1, secondCoefficients.a1)),
          a2_(of(firstCoefficients.a2, secondCoefficients.a2)),
          x1_(memory(first, second, &BiquadState::x1)),
          x2_(memory(first, second, &BiquadState::x2)),
          y1_(memory(first, second, &BiquadState::y1)),
          y2_(memory(first, second, &BiquadState::y2)) {}

    [[gnu::always_inline]] FourFloats process(FourFloats x) noexcept {
        const FourFloats y = b0_ * x + b1_ * x1_ + b2_ * x2_ - a1_ * y1_ - a2_ * y2_;
        x2_ = x1_;
        x1_ = x;
        y2_ = y1_;
        y1_ = y;
        return y;
    }

    void save(StereoSection &first, StereoSection &second) const noexcept {
        save(first, second, &BiquadState::x1, x1_);
        save(first, second, &BiquadState::x2, x2_);
        save(first, second, &BiquadState::y1, y1_);
        save(first, second, &BiquadState::y2, y2_);
    }

  private:
    [[gnu::always_inline]] static FourFloats of(float first, float second) noexcept {
        return FourFloats{first, first, second, second};
    }
    [[gnu::always_inline]] static FourFloats memory(const StereoSection &first,
                                                    const StereoSection &second,
                                                    float BiquadState::*part) noexcept {
        return FourFloats{first.left.*part, first.right.*part, second.left.*part,
                          second.right.*part};
    }
    static void save(StereoSection &first, StereoSection &second, float BiquadState::*part,
                     FourFloats values) noexcept {
        first.left.*part = values[0];
        first.right.*part = values[1];
        second.left.*part = values[2];
        second.right.*part = values[3];
    }

    FourFloats b0_;
    FourFloats b1_;
    FourFloats b2_;
    FourFloats a1_;
    FourFloats a2_;
    FourFloats x1_;
    FourFloats x2_;
    FourFloats y1_;
    FourFloats y2_;
};

/// Four frames of both sections, as a SectionPair processes them.
struct FourFrames {
    FourFloats frame[4];

    /// Takes the first section's frames from `left` and `right`, the second's from the first two
    /// lanes of `second`'s frames.
    [[gnu::always_inline]] static FourFrames of(FourFloats left, FourFloats right,
                                                const FourFrames &second) noexcept {
        const FourFloats early = __builtin_shufflevector(left, right, 0, 4, 1, 5);
        const FourFloats late = __builtin_shufflevector(left, right, 2, 6, 3, 7);
        return {{__builtin_shufflevector(early, second.frame[0], 0, 1, 4, 5),
                 __builtin_shufflevector(early, second.frame[1], 2, 3, 4, 5),
                 __builtin_shufflevector(late, second.frame[2], 0, 1, 4, 5),
                 __builtin_shufflevector(late, second.frame[3], 2, 3, 4, 5)}};
    }

    struct Channels {
        FourFloats left;
        FourFloats right;
    };
    [[gnu::always_inline]] Channels first() const noexcept {
        const FourFloats early = __builtin_shufflevector(frame[0], frame[1], 0, 4, 1, 5);
        const FourFloats late = __builtin_shufflevector(frame[2], frame[3], 0, 4, 1, 5);
        return sorted(early, late);
    }
    [[gnu::always_inline]] Channels second() const noexcept {
        const FourFloats early = __builtin_shufflevector(frame[0], frame[1], 2, 6, 3, 7);
        const FourFloats late = __builtin_shufflevector(frame[2], frame[3], 2, 6, 3, 7);
        return sorted(early, late);
    }

    [[gnu::always_inline]] FourFrames through(SectionPair &sections) const noexcept {
        FourFrames result; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
        for (int i = 0; i < 4; ++i)
            result.frame[i] = sections.process(frame[i]);
        return result;
    }

  private:
    [[gnu::always_inline]] static Channels sorted(FourFloats early, FourFloats late) noexcept {
        return {__builtin_shufflevector(early, late, 0, 1, 4, 5),
                __builtin_shufflevector(early, late, 2, 3, 6, 7)};
    }
};

} // namespace quorbel
