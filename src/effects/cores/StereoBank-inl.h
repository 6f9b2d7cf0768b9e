// Included after Highway's headers by code that is compiled once per vector target; hence the guard
// that changes with the target.
#if defined(QUORBEL_STEREO_BANK_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef QUORBEL_STEREO_BANK_INL_H
#undef QUORBEL_STEREO_BANK_INL_H
#else
#define QUORBEL_STEREO_BANK_INL_H
#endif

#include "effects/cores/StereoSection.h"

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace quorbel::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Frames that a StereoBank processes in one step.
inline constexpr std::uint32_t bankFrames = 8;

#if HWY_TARGET != HWY_SCALAR

/// Second-order sections of a StereoBank.
inline constexpr std::size_t bankSections = 4;

/// One section of a StereoBank.
struct BankSection {
    const BiquadCoefficients *coefficients;
    StereoSection *state;
    std::uint32_t lag; ///< steps from the call's first step to the section's first tile
};

/// Runs four stereo sections in the time of one: each is latency-bound by its previous output.
/// Lanes 2s and 2s + 1 are left and right of section s; they compute the sums of
/// BiquadState::process in its order. Lives for one block; `save` writes the states back.
///
/// A tile is `bankFrames` interleaved frames, aligned to 64 bytes.
class StereoBank {
  public:
    explicit StereoBank(const BankSection (&sections)[bankSections]) {
        HWY_ALIGN float table[10][laneCount];
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            const BankSection &section = sections[lane / 2];
            const BiquadCoefficients &c = *section.coefficients;
            const BiquadState &state = channel(section, lane);
            const float column[10] = {
                c.b0,     c.b1,     c.b2,     c.a1,     c.a2,
                state.x1, state.x2, state.y1, state.y2, static_cast<float>(section.lag)};
            for (std::size_t row = 0; row < 10; ++row)
                table[row][lane] = column[row];
        }
        for (std::size_t v = 0; v < vectorCount; ++v) {
            const auto load = [&](std::size_t row) HWY_ATTR {
                return hn::Load(Tag(), table[row] + v * vectorLanes);
            };
            Lanes &l = lanes_[v];
            std::size_t row = 0;
            for (Vector *part :
                 {&l.b0, &l.b1, &l.b2, &l.a1, &l.a2, &l.x1, &l.x2, &l.y1, &l.y2, &l.lag})
                *part = load(row++);
        }
    }

    void save(const BankSection (&sections)[bankSections]) const {
        HWY_ALIGN float table[4][laneCount];
        for (std::size_t v = 0; v < vectorCount; ++v) {
            hn::Store(lanes_[v].x1, Tag(), table[0] + v * vectorLanes);
            hn::Store(lanes_[v].x2, Tag(), table[1] + v * vectorLanes);
            hn::Store(lanes_[v].y1, Tag(), table[2] + v * vectorLanes);
            hn::Store(lanes_[v].y2, Tag(), table[3] + v * vectorLanes);
        }
        for (std::size_t lane = 0; lane < laneCount; ++lane)
            channel(sections[lane / 2], lane) = {table[0][lane], table[1][lane], table[2][lane],
                                                 table[3][lane]};
    }

    /// Runs one tile of every section from `in` to `out`, which may be equal. Calls
    /// `meanwhile(frame)` after each frame to overlap another recursion.
    template <typename Meanwhile>
    HWY_INLINE void process(const float *const (&in)[bankSections],
                            float *const (&out)[bankSections], const Meanwhile &meanwhile) {
#if HWY_MAX_BYTES >= 32
        Pairs rows[2][4];
        for (std::size_t half = 0; half < 2; ++half) {
            for (std::size_t section = 0; section < 4; ++section)
                rows[half][section] = load(in[section] + 8 * half);
            transpose(rows[half]);
            for (std::size_t i = 0; i < 4; ++i) {
                rows[half][i] = frame(0, rows[half][i]);
                meanwhile(4 * half + i);
            }
            transpose(rows[half]);
        }
        for (std::size_t section = 0; section < 4; ++section) {
#if HWY_MAX_BYTES >= 64
            // Store forwarding is the bottleneck: a vector load stalls on two narrower stores.
            const hn::CappedTag<double, 8> whole;
            hn::Store(hn::Combine(whole, rows[1][section], rows[0][section]), whole,
                      reinterpret_cast<double *>(out[section]));
#else
            store(rows[0][section], out[section]);
            store(rows[1][section], out[section] + 8);
#endif
        }
#else
        for (std::size_t i = 0; i < bankFrames; i += 2) {
            for (std::size_t v = 0; v < 2; ++v) {
                const Pairs a = load(in[2 * v] + 2 * i);
                const Pairs b = load(in[2 * v + 1] + 2 * i);
                const Pairs early = frame(v, hn::InterleaveLower(PairTag(), a, b));
                const Pairs late = frame(v, hn::InterleaveUpper(PairTag(), a, b));
                store(hn::InterleaveLower(PairTag(), early, late), out[2 * v] + 2 * i);
                store(hn::InterleaveUpper(PairTag(), early, late), out[2 * v + 1] + 2 * i);
            }
            meanwhile(i);
            meanwhile(i + 1);
        }
#endif
    }

    /// Copies the states of `other` for the sections with the given `lag`.
    HWY_INLINE void takeOver(const StereoBank &other, std::uint32_t lag) {
        const Vector wanted = hn::Set(Tag(), static_cast<float>(lag));
        for (std::size_t v = 0; v < vectorCount; ++v) {
            Lanes &l = lanes_[v];
            const Lanes &o = other.lanes_[v];
            const auto taken = hn::Eq(l.lag, wanted);
            l.x1 = hn::IfThenElse(taken, o.x1, l.x1);
            l.x2 = hn::IfThenElse(taken, o.x2, l.x2);
            l.y1 = hn::IfThenElse(taken, o.y1, l.y1);
            l.y2 = hn::IfThenElse(taken, o.y2, l.y2);
        }
    }

  private:
    using Tag = hn::CappedTag<float, 2 * bankSections>;
    using Vector = hn::Vec<Tag>;
    using PairTag = hn::Repartition<double, Tag>; ///< a double holds a stereo frame's bits
    using Pairs = hn::Vec<PairTag>;

    static constexpr std::size_t laneCount = 2 * bankSections;
    static constexpr std::size_t vectorLanes = hn::MaxLanes(Tag());
    static constexpr std::size_t vectorCount = laneCount / vectorLanes;

    struct Lanes {
        HWY_INLINE Lanes() {} // an implicit one would lack the vector target
        Vector b0, b1, b2, a1, a2, x1, x2, y1, y2, lag;
    };

    static BiquadState &channel(const BankSection &section, std::size_t lane) {
        return lane % 2 == 0 ? section.state->left : section.state->right;
    }

    HWY_INLINE Pairs frame(std::size_t v, Pairs input) {
        Lanes &l = lanes_[v];
        const Vector x = hn::BitCast(Tag(), input);
        const Vector fed =
            hn::Add(hn::Add(hn::Mul(l.b0, x), hn::Mul(l.b1, l.x1)), hn::Mul(l.b2, l.x2));
        const Vector y = hn::Sub(hn::Sub(fed, hn::Mul(l.a1, l.y1)), hn::Mul(l.a2, l.y2));
        l.x2 = l.x1;
        l.x1 = x;
        l.y2 = l.y1;
        l.y1 = y;
        return hn::BitCast(PairTag(), y);
    }

    static HWY_INLINE Pairs load(const float *from) {
        return hn::BitCast(PairTag(), hn::Load(Tag(), from));
    }
    static HWY_INLINE void store(Pairs pairs, float *to) {
        hn::Store(hn::BitCast(Tag(), pairs), Tag(), to);
    }

#if HWY_MAX_BYTES >= 32
    /// Transposes sections of frames into frames of sections, and back.
    static HWY_INLINE void transpose(Pairs (&p)[4]) {
        const PairTag tag;
        const Pairs early = hn::InterleaveLower(tag, p[0], p[1]);
        const Pairs late = hn::InterleaveUpper(tag, p[0], p[1]);
        const Pairs early2 = hn::InterleaveLower(tag, p[2], p[3]);
        const Pairs late2 = hn::InterleaveUpper(tag, p[2], p[3]);
        p[0] = hn::ConcatLowerLower(tag, early2, early);
        p[1] = hn::ConcatLowerLower(tag, late2, late);
        p[2] = hn::ConcatUpperUpper(tag, early2, early);
        p[3] = hn::ConcatUpperUpper(tag, late2, late);
    }
#endif

    Lanes lanes_[vectorCount];
};

#endif

} // namespace quorbel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
