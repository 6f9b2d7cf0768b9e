#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// Measures the K-weighted power (ITU-R BS.1770) of four channels at once: a shelf for the head,
/// then a high pass, both biquads in direct form I and double precision.
class KWeighting {
  public:
    static constexpr std::size_t channelCount = 4;
    using Channels = std::array<const float *, channelCount>;
    using Sums = std::array<double, channelCount>;

    /// `sampleRate` in Hz.
    explicit KWeighting(double sampleRate);

    /// Clears the filters' memory.
    void clear() noexcept { memory_ = {}; }

    /// Sums the squares of each channel's weighted samples. [render]
    [[nodiscard]] Sums squares(const Channels &channels, std::uint32_t frames) noexcept;

    /// Coefficients normalised to a0 = b0 = 1.
    struct Shelf {
        double b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
    };
    /// Feedback coefficients; the feedforward ones are 1, -2 and 1.
    struct Cut {
        double a1 = 0.0, a2 = 0.0;
    };
    struct Sections {
        Shelf shelf;
        Cut cut;
    };
    /// Last two samples per channel of the input, after the shelf, and after both sections.
    struct Memory {
        std::array<Sums, 2> input{};
        std::array<Sums, 2> shelved{};
        std::array<Sums, 2> weighted{};
    };

  private:
    Sections sections_;
    double scale_ = 1.0; ///< squared gain that the sections leave out
    Memory memory_;
};

} // namespace quorbel
