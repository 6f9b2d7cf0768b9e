#include "settings/records/SpatialConfig.h"

namespace quorbel {

std::string_view title(SpatialConfig::ReverbPreset preset) {
    using enum SpatialConfig::ReverbPreset;
    switch (preset) {
    case smallRoom:
        return "Small Room";
    case mediumRoom:
        return "Medium Room";
    case largeRoom:
        return "Large Room";
    case mediumHall:
        return "Medium Hall";
    case largeHall:
        return "Large Hall";
    case cathedral:
        return "Cathedral";
    case plate:
        return "Plate";
    }
    return {};
}

} // namespace quorbel
