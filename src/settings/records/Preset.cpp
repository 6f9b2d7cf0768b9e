#include "settings/records/Preset.h"

namespace quorbel {

std::string_view displayName(Preset::Category category) {
    using enum Preset::Category;
    switch (category) {
    case general:
        return "General";
    case mr5:
        return "Edifier MR5";
    case mr5Desk:
        return "MR5 + Desk";
    case bass:
        return "Bass";
    case headphones:
        return "Headphones";
    case btSpeakers:
        return "Bluetooth Speakers";
    case genre:
        return "Genre / Use-case";
    case user:
        return "Mine";
    }
    return {};
}

} // namespace quorbel
