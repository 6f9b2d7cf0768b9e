#include "reverb/RoomModel.h"

namespace quorbel {

const RoomCharacter &characterOf(RoomModel model) {
    // Decay, treble and pre-delay are given; the other times were chosen by measurement: early and
    // even density, and no long swell of a low tone.
    static constexpr RoomCharacter smallRoom{0.45, 0.70, 0.003, 0.0110, 0.0115, 0.0185, 0.40};
    static constexpr RoomCharacter mediumRoom{0.80, 0.65, 0.008, 0.0150, 0.0150, 0.0235, 0.35};
    static constexpr RoomCharacter largeRoom{1.30, 0.60, 0.014, 0.0275, 0.0225, 0.0300, 0.30};
    static constexpr RoomCharacter mediumHall{1.90, 0.55, 0.020, 0.0300, 0.0280, 0.0465, 0.25};
    static constexpr RoomCharacter largeHall{2.80, 0.50, 0.028, 0.0385, 0.0225, 0.0510, 0.20};
    static constexpr RoomCharacter cathedral{5.50, 0.40, 0.040, 0.0410, 0.0335, 0.0790, 0.12};
    static constexpr RoomCharacter plate{1.60, 0.80, 0.000, 0.0045, 0.0110, 0.0210, 0.05};
    switch (model) {
    case RoomModel::smallRoom:
        return smallRoom;
    case RoomModel::mediumRoom:
        return mediumRoom;
    case RoomModel::largeRoom:
        return largeRoom;
    case RoomModel::mediumHall:
        return mediumHall;
    case RoomModel::largeHall:
        return largeHall;
    case RoomModel::plate:
        return plate;
    case RoomModel::cathedral:
        return cathedral;
    }
    return smallRoom;
}

} // namespace quorbel
