#pragma once

#include "platform/dsp/StateVariableSection.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Resting sections in series, of one equaliser or of several, gathered in their order to be run
/// over a block in one pass. Their memories are borrowed for the call. [render]
class SectionBatch {
  public:
    /// In place, over `frames` frames.
    SectionBatch(float *left, float *right, std::uint32_t frames) noexcept
        : left_(left), right_(right), frames_(frames) {}
    SectionBatch(const SectionBatch &) = delete;
    SectionBatch &operator=(const SectionBatch &) = delete;

    void add(const SectionCoefficients &section, SectionState &left, SectionState &right) noexcept;

    /// A gain behind what has been added so far, which costs nothing if anything has been.
    void scale(float gain) noexcept;

    /// To be called at the end.
    void run() noexcept;

  private:
    // More are run in several passes, as they would be anyway.
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
