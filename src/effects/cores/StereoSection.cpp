#include "effects/cores/StereoSection.h"

#include <algorithm>

namespace quorbel {

namespace {

// Four lanes are what every machine has, so there is nothing to choose at run time: the first
// section's channels and the second's.
using Vector [[gnu::vector_size(4 * sizeof(float))]] = float;

/// The lanes' sums are those of BiquadState::process, in its order.
class Lanes {
  public:
    Lanes(const SectionRun &first, const SectionRun &second) noexcept
        : b0_(of(first.coefficients.b0, second.coefficients.b0)),
          b1_(of(first.coefficients.b1, second.coefficients.b1)),
          b2_(of(first.coefficients.b2, second.coefficients.b2)),
          a1_(of(first.coefficients.a1, second.coefficients.a1)),
          a2_(of(first.coefficients.a2, second.coefficients.a2)),
          x1_(memory(first, second, &BiquadState::x1)),
          x2_(memory(first, second, &BiquadState::x2)),
          y1_(memory(first, second, &BiquadState::y1)),
          y2_(memory(first, second, &BiquadState::y2)) {}

    Vector process(Vector x) noexcept {
        const Vector y = b0_ * x + b1_ * x1_ + b2_ * x2_ - a1_ * y1_ - a2_ * y2_;
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
    static Vector of(float first, float second) noexcept {
        return Vector{first, first, second, second};
    }
    static Vector memory(const SectionRun &first, const SectionRun &second,
                         float BiquadState::*part) noexcept {
        return Vector{first.section.left.*part, first.section.right.*part,
                      second.section.left.*part, second.section.right.*part};
    }
    static void save(StereoSection &first, StereoSection &second, float BiquadState::*part,
                     Vector values) noexcept {
        first.left.*part = values[0];
        first.right.*part = values[1];
        second.left.*part = values[2];
        second.right.*part = values[3];
    }

    Vector b0_;
    Vector b1_;
    Vector b2_;
    Vector a1_;
    Vector a2_;
    Vector x1_;
    Vector x2_;
    Vector y1_;
    Vector y2_;
};

} // namespace

void processSection(const SectionRun &run) noexcept {
    Lanes lanes(run, run);
    for (std::size_t i = 0; i < std::size_t{2} * run.frames; i += 2) {
        const Vector y = lanes.process(Vector{run.input[i], run.input[i + 1]});
        run.output[i] = y[0];
        run.output[i + 1] = y[1];
    }
    StereoSection unused;
    lanes.save(run.section, unused);
}

void processSections(const SectionRun &first, const SectionRun &second) noexcept {
    const std::uint32_t together = std::min(first.frames, second.frames);
    Lanes lanes(first, second);
    for (std::size_t i = 0; i < std::size_t{2} * together; i += 2) {
        const Vector y = lanes.process(
            Vector{first.input[i], first.input[i + 1], second.input[i], second.input[i + 1]});
        first.output[i] = y[0];
        first.output[i + 1] = y[1];
        second.output[i] = y[2];
        second.output[i + 1] = y[3];
    }
    lanes.save(first.section, second.section);
    const auto rest = [together](const SectionRun &run) {
        const std::size_t done = std::size_t{2} * together;
        processSection({run.coefficients, run.section, run.input + done, run.output + done,
                        run.frames - together});
    };
    rest(first);
    rest(second);
}

} // namespace quorbel
