#pragma once

#include "platform/dsp/reverb/RoomDesign.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// One room: stereo sound in, its reflections and reverberation out, in four steps.
///
/// 1. Pre-delay. What is below 20 Hz is taken out before, so that nothing can pile up at 0 Hz.
/// 2. A diffuser per input channel: two branches p and q, in each stage q is delayed and the sum
/// and
///    the difference go on. This doubles the echoes per stage and changes no energy at any
///    frequency, as |p|² + |q|² stays flat (M. Golay's complementary sequences, with delays of our
///    choice).
/// 3. After three stages that is the early reflections; after all eight it feeds
/// 4. a feedback delay network (J.-M. Jot, "Digital delay networks for designing artificial
///    reverberators", 1991): eight lines, mixed by a Hadamard matrix, which keeps all energy, and
///    in each line the loss that its length takes for the wanted decay. Two of the matrix's
///    outputs, being orthogonal, are the two channels.
///
/// All delays of step 4 exceed a block of 16 frames, so a block is 16 frames of plain arithmetic
/// without recursion. Vector and plain code do the same sums in the same order and give the same
/// bytes.
class ReverbTank {
  public:
    static constexpr std::uint32_t blockFrames = 16;

    enum class Code { vector, plain };
    explicit ReverbTank(Code code = Code::vector) : code_(code) {}

    /// Takes the memory that every room needs at `sampleRate` Hz (8000 to 384000), silent. Not
    /// while rendering.
    void prepare(double sampleRate);

    /// Begins with silence as the room of `design`, made for the rate prepared for. The memory must
    /// be clear. [render]
    void start(const RoomDesign &design) noexcept;

    /// Renders any number of frames: only the room, no direct sound. How the sound is cut into
    /// calls makes no difference to it. What is not finite (or beyond 1e15) is taken as silence.
    /// Inputs and outputs must not overlap. [render]
    void process(const float *left, const float *right, float *wetLeft, float *wetRight,
                 std::uint32_t frames) noexcept;

    [[nodiscard]] bool isClear() const noexcept { return cleared_ == memory_.size(); }

    /// Erases the room's sound piece by piece, at a cost per frame that is of the order of
    /// `process`. A tank must not be processed again before it is clear and started. [render]
    void clearSome(std::uint32_t frames) noexcept;

    /// One block of 16 frames, or a part of it.
    struct Block {
        const float *left;
        const float *right;
        float *wetLeft;
        float *wetRight;
        std::uint32_t frames;
    };

    /// Rings of equal length, a power of two, one behind the other. The first block is repeated
    /// behind the end, so that 16 frames can be read from any place.
    struct Rings {
        float *memory = nullptr;
        std::uint32_t length = 0;

        [[nodiscard]] std::size_t stride() const noexcept { return length + 2 * blockFrames; }
        [[nodiscard]] float *ring(std::size_t index) const noexcept {
            return memory + index * stride();
        }
        [[nodiscard]] std::uint32_t slot(std::uint32_t position) const noexcept {
            return position & (length - 1);
        }
    };

    /// What a block works on; for the code of a block only.
    struct State {
        RoomDesign design;
        Rings input;     ///< left, right
        Rings diffusers; ///< stages 2 to 8 of the left, then of the right diffuser
        Rings lines;
        std::uint32_t position = 0; ///< of the next frame
        /// What is taken out of each input channel: a straight line per block.
        std::array<float, 2> baseline{};
        std::array<float, 2> baselineStep{};
        std::array<std::array<float, blockFrames>, 2> heard{}; ///< this block's input
    };

  private:
    void finishBlock() noexcept;

    const Code code_;
    std::vector<float> memory_;
    std::size_t cleared_ = 0; ///< so much of the memory is silent; all of it before the start
    double baselineCoefficient_ = 0.0;
    std::array<double, 2> baselineTarget_{};
    State state_;
};

} // namespace quorbel
