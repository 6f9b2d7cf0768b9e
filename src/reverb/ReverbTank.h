#pragma once

#include "reverb/RoomDesign.h"

#include <span>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Renders a room's reflections and reverberation of a stereo sound, in four steps.
///
/// 1. Pre-delay, after a high pass at 20 Hz, so that nothing accumulates at 0 Hz.
/// 2. A diffuser per input channel, with two branches p and q. Each stage delays q and passes on
///    sum and difference. It doubles the number of echoes and keeps the energy at every frequency,
///    as |p|² + |q|² stays flat (M. Golay's complementary sequences, with delays of our choice).
/// 3. Outputs: the early reflections after three stages, the input of 4 after all nine.
/// 4. A feedback delay network (J.-M. Jot, "Digital delay networks for designing artificial
///    reverberators", 1991): eight lines, mixed by a Hadamard matrix, which keeps all energy. Each
///    line has the loss that the wanted decay requires for its length. The output channels are two
///    orthogonal sums of all lines, so that the other lines mask the repetitions of one.
///
/// No delay of the network is shorter than a block of 32 frames, so a block has no recursion.
/// Vector and plain code compute the same sums in the same order, bit by bit.
class ReverbTank {
  public:
    static constexpr std::uint32_t blockFrames = RoomDesign::shortestDelay;

    enum class Code { vector, plain };
    explicit ReverbTank(Code code = Code::vector) : code_(code) {}
    ReverbTank(const ReverbTank &) = delete;
    ReverbTank &operator=(const ReverbTank &) = delete;

    /// Allocates the memory that any room needs at `sampleRate` Hz (8000 to 384000), silent. Not
    /// while rendering.
    void prepare(double sampleRate);

    /// Starts the room of `design`, made for the prepared rate, from silence. The memory must be
    /// clear. [render]
    void start(const RoomDesign &design) noexcept;

    struct Gains {
        float dry = 0.0F;
        float wet = 1.0F;
    };
    struct Block {
        const float *left = nullptr;
        const float *right = nullptr;
        float *outLeft = nullptr; ///< may be equal to the inputs
        float *outRight = nullptr;
        std::uint32_t frames = 0;
        Gains gains;
    };
    /// Renders any number of frames: out = dry · in + wet · room. The result does not depend on the
    /// lengths of the calls. Replaces samples that are not finite or reach 1e15 by silence in the
    /// room's input. [render]
    void process(const Block &block) noexcept;

    [[nodiscard]] bool isClear() const noexcept { return cleared_ == memory_.size(); }

    /// Erases the room's sound piece by piece, at about the cost of `process` per frame. A tank
    /// must be clear and started before it is processed again. [render]
    void clearSome(std::uint32_t frames) noexcept;

    /// Rings of equal length, a power of two, in one memory. Each ring's beginning is repeated
    /// after its end, so that a read is never split.
    struct Rings {
        std::size_t count;
        std::uint32_t length = 0;
        float *memory = nullptr;

        static constexpr std::uint32_t repeatedFrames = 2 * blockFrames;
        [[nodiscard]] std::size_t stride() const noexcept { return length + repeatedFrames; }
        [[nodiscard]] std::size_t size() const noexcept { return count * stride(); }
        [[nodiscard]] float *ring(std::size_t index) const noexcept {
            return memory + index * stride();
        }
    };

    static constexpr std::size_t diffuserRings = RoomDesign::stageCount - 1; ///< per channel

    /// Read heads; each moves through its ring.
    enum ReadHead : std::size_t {
        inputHead = 0,                               ///< of left and right
        delayedHead = inputHead + 2,                 ///< further back by the first stage
        diffuserHead = delayedHead + 2,              ///< of every diffuser ring
        lineHead = diffuserHead + 2 * diffuserRings, ///< of every line: its oldest tap
        readHeadCount = lineHead + RoomDesign::lineCount,
        paddedReadHeadCount = 32, ///< whole vectors
    };
    using PerReadHead = std::array<std::uint32_t, paddedReadHeadCount>;

    /// Frames per mean of the input.
    static constexpr std::uint32_t meanFrames = 4 * blockFrames;

    /// State and memory for the code of a block.
    struct State {
        RoomDesign design;
        Rings input{.count = 2};                     ///< left, right
        Rings diffusers{.count = 2 * diffuserRings}; ///< the left's stages 2 to 9, the right's
        Rings lines{.count = RoomDesign::lineCount};
        std::uint32_t position = 0;    ///< of the next frame
        const float *memory = nullptr; ///< of all rings
        PerReadHead reads{};           ///< offsets in `memory` at `position`
        PerReadHead headRing{};        ///< offset in `memory` of each head's ring
        PerReadHead headMask{};        ///< its length - 1
        PerReadHead headDelay{};       ///< frames
        /// Per channel: the subtracted baseline, a straight line over the mean's frames, and the
        /// sums for the next mean.
        alignas(64) std::array<std::array<float, meanFrames>, 2> baseline{};
        alignas(64) std::array<std::array<float, blockFrames>, 2> heard{};
        double baselineCoefficient = 0.0;
        std::array<double, 2> baselineTarget{};
    };

  private:
    const Code code_;
    std::vector<float> storage_;
    std::span<float> memory_; ///< of all rings; the cache-aligned part of `storage_`
    std::size_t cleared_ = 0; ///< samples cleared so far; all of them before `start`
    State state_;
};

} // namespace quorbel
