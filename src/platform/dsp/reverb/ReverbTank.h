#pragma once

#include "platform/dsp/reverb/RoomDesign.h"

#include <span>

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
/// 3. After three stages that is the early reflections; after all nine it feeds
/// 4. a feedback delay network (J.-M. Jot, "Digital delay networks for designing artificial
///    reverberators", 1991): eight lines, mixed by a Hadamard matrix, which keeps all energy, and
///    in each line the loss that its length takes for the wanted decay. The channels are two sums
///    of all lines with orthogonal signs, neither of which any one line hears undiluted: what a
///    line repeats is then lost among the others.
///
/// No delay of the network is shorter than a block of 32 frames, so a block is 32 frames of plain
/// arithmetic without recursion. Vector and plain code do the same sums in the same order and give
/// the same bytes.
class ReverbTank {
  public:
    static constexpr std::uint32_t blockFrames = RoomDesign::shortestDelay;

    enum class Code { vector, plain };
    explicit ReverbTank(Code code = Code::vector) : code_(code) {}
    ReverbTank(const ReverbTank &) = delete;
    ReverbTank &operator=(const ReverbTank &) = delete;

    /// Takes the memory that every room needs at `sampleRate` Hz (8000 to 384000), silent. Not
    /// while rendering.
    void prepare(double sampleRate);

    /// Begins with silence as the room of `design`, made for the rate prepared for. The memory must
    /// be clear. [render]
    void start(const RoomDesign &design) noexcept;

    struct Gains {
        float dry = 0.0F;
        float wet = 1.0F;
    };
    struct Block {
        const float *left;
        const float *right;
        float *outLeft; ///< may be the inputs themselves
        float *outRight;
        std::uint32_t frames;
        Gains gains;
    };
    /// Renders any number of frames: out = dry · in + wet · room. How the sound is cut into calls
    /// makes no difference to it. What is not finite (or beyond 1e15) does not enter the room.
    /// [render]
    void process(const Block &block) noexcept;

    [[nodiscard]] bool isClear() const noexcept { return cleared_ == memory_.size(); }

    /// Erases the room's sound piece by piece, at a cost per frame of the order of `process`. A
    /// tank must not be processed again before it is clear and started. [render]
    void clearSome(std::uint32_t frames) noexcept;

    /// Rings of equal length, a power of two, one behind the other. What stands at the beginning is
    /// repeated behind the end, so that a read never has to be cut in two.
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

    /// The places that are read; each moves through its ring.
    enum ReadHead : std::size_t {
        inputHead = 0,                               ///< of left and right
        delayedHead = inputHead + 2,                 ///< further back by the first stage
        diffuserHead = delayedHead + 2,              ///< of every diffuser ring
        lineHead = diffuserHead + 2 * diffuserRings, ///< of every line: its oldest tap
        readHeadCount = lineHead + RoomDesign::lineCount,
        paddedReadHeadCount = 32, ///< whole vectors
    };
    using PerReadHead = std::array<std::uint32_t, paddedReadHeadCount>;

    /// Over which an input's mean is taken.
    static constexpr std::uint32_t meanFrames = 4 * blockFrames;

    /// What the code of a block works on.
    struct State {
        RoomDesign design;
        Rings input{.count = 2};                     ///< left, right
        Rings diffusers{.count = 2 * diffuserRings}; ///< the left's stages 2 to 9, the right's
        Rings lines{.count = RoomDesign::lineCount};
        std::uint32_t position = 0;    ///< of the next frame
        const float *memory = nullptr; ///< of all rings
        PerReadHead reads{};           ///< at `position`, into `memory`
        PerReadHead headRing{};        ///< where in `memory` each head's ring begins
        PerReadHead headMask{};        ///< its length - 1
        PerReadHead headDelay{};       ///< frames
        /// Per channel: what is taken out, a straight line over the mean's frames, and the sums
        /// that make the next mean.
        alignas(64) std::array<std::array<float, meanFrames>, 2> baseline{};
        alignas(64) std::array<std::array<float, blockFrames>, 2> heard{};
        double baselineCoefficient = 0.0;
        std::array<double, 2> baselineTarget{};
    };

  private:
    const Code code_;
    std::vector<float> storage_;
    std::span<float> memory_; ///< of all rings, from a cache line's beginning in `storage_`
    std::size_t cleared_ = 0; ///< so much of the memory is silent; all of it before the start
    State state_;
};

} // namespace quorbel
