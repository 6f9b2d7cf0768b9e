#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quorbel {

/// The reverb's rooms, numbered as the factory presets.
enum class RoomModel : int {
    smallRoom = 0,
    mediumRoom = 1,
    largeRoom = 2,
    mediumHall = 3,
    largeHall = 4,
    plate = 5,
    cathedral = 8,
};

inline constexpr std::array allRoomModels{
    RoomModel::smallRoom, RoomModel::mediumRoom, RoomModel::largeRoom, RoomModel::mediumHall,
    RoomModel::largeHall, RoomModel::plate,      RoomModel::cathedral,
};

/// Acoustic character of a room, independent of the sample rate.
struct RoomCharacter {
    double decaySeconds;      ///< RT60 at 1 kHz
    double trebleDecayRatio;  ///< RT60 at 8 kHz over that at 1 kHz
    double preDelaySeconds;   ///< until the first reflection
    double reflectionSeconds; ///< from the first to the last early reflection
    double diffusionSeconds;  ///< span over which each reflection is spread before the late sound
    double meanDelaySeconds;  ///< of the late network: the time between two walls
    double earlyShare;        ///< share of the early reflections in the energy, 0 to 1
};

[[nodiscard]] const RoomCharacter &characterOf(RoomModel model);

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
