#pragma once

#include <array>

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

} // namespace quorbel
