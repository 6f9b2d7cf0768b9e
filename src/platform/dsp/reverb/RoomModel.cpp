#include "platform/dsp/reverb/RoomModel.h"

namespace quorbel {

const RoomCharacter &characterOf(RoomModel model) {
    //                                           decay treble  pre  reflect diffuse mean  early
    static constexpr RoomCharacter smallRoom{0.45, 0.70, 0.003, 0.011, 0.013, 0.018, 0.40};
    static constexpr RoomCharacter mediumRoom{0.80, 0.65, 0.008, 0.017, 0.016, 0.027, 0.35};
    static constexpr RoomCharacter largeRoom{1.30, 0.60, 0.014, 0.024, 0.019, 0.037, 0.30};
    static constexpr RoomCharacter mediumHall{1.90, 0.55, 0.020, 0.031, 0.022, 0.048, 0.25};
    static constexpr RoomCharacter largeHall{2.80, 0.50, 0.028, 0.038, 0.026, 0.055, 0.20};
    static constexpr RoomCharacter cathedral{5.50, 0.40, 0.040, 0.047, 0.032, 0.074, 0.12};
    static constexpr RoomCharacter plate{1.60, 0.80, 0.000, 0.004, 0.009, 0.024, 0.05};
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
