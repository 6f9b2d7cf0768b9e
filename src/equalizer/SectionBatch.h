#pragma once

#include "equalizer/StateVariableSection.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Gathers the resting sections of one or several equalisers in series, and runs them over a block
/// in one pass. Borrows their states for the call. [render]
class SectionBatch {
  public:
    /// Works in place on `frames` frames.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): arrays are filled by `add`
    SectionBatch(float *left, float *right, std::uint32_t frames) noexcept
        : left_(left), right_(right), frames_(frames) {}
    SectionBatch(const SectionBatch &) = delete;
    SectionBatch &operator=(const SectionBatch &) = delete;

    void add(const SectionCoefficients &section, SectionState &left, SectionState &right) noexcept;

    /// Adds a gain after the sections so far; free if there is a section.
    void scale(float gain) noexcept;

    /// Runs the remaining sections; call it last.
    void run() noexcept;

  private:
    // More sections run in several passes, as in the cascade.
    static constexpr std::size_t capacity = 16;

    float *left_;
    float *right_;
    std::uint32_t frames_;
    std::size_t count_ = 0;
    std::array<SectionCoefficients, capacity> sections_;
    std::array<SectionState, capacity> leftStates_;
    std::array<SectionState, capacity> rightStates_;
    std::array<SectionState *, capacity> leftOwners_;
    std::array<SectionState *, capacity> rightOwners_;
};

} // namespace quorbel
