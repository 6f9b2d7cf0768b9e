#pragma once

#include "reverb/RoomModel.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// A room at a sample rate: delays in frames and gains for a `ReverbTank`. Made off the audio
/// thread, copied to it.
struct RoomDesign {
    static constexpr std::size_t lineCount = 8;   ///< of the late network
    static constexpr std::size_t stageCount = 9;  ///< of each diffuser
    static constexpr std::size_t earlyStages = 3; ///< up to the early reflections

    /// Shortest delay in frames, except for a pre-delay of 0: a block of this length has no
    /// recursion.
    static constexpr std::uint32_t shortestDelay = 32;

    RoomModel model = RoomModel::smallRoom;
    std::uint32_t preDelay = 0; ///< frames

    /// Per input channel: the delay of each diffuser stage in frames.
    std::array<std::array<std::uint32_t, stageCount>, 2> stageDelays{};

    /// Different primes, so that the echoes of two lines rarely coincide.
    std::array<std::uint32_t, lineCount> lineDelays{};

    /// Loss of each line per pass: centre · x[n] + side · (x[n - spacing] + x[n + spacing]),
    /// including the mixing matrix's 1/√8.
    std::uint32_t spacing = 1;
    std::array<float, lineCount> centre{};
    std::array<float, lineCount> side{};

    // Output gains.
    float earlyNear = 0.0F; ///< reflections of the channel's own input
    float earlyFar = 0.0F;  ///< reflections of the other input
    float diffuse = 0.0F;   ///< the diffuser's output, which feeds the network
    float late = 0.0F;      ///< the network

    /// `sampleRate` in Hz, 8000 to 384000.
    [[nodiscard]] static RoomDesign of(RoomModel model, double sampleRate);
};

} // namespace quorbel
