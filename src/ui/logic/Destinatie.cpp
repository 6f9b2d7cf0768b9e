#include "ui/logic/Destinatie.h"

#include "ui/logic/PresetTexts.h"
#include "ui/logic/Stages.h"

#include <fmt/format.h>

namespace quorbel {

namespace {

struct Description {
    std::string_view rawValue;
    std::string_view title;
    std::string_view symbol;
};

/// In the order of the enumeration.
constexpr std::array<Description, 10> descriptions{{
    {"equalizer", "Equalizer", "slider.vertical.3"},
    {"spatial", "Spatial", "sparkles"},
    {"mixer", "Mixer", "slider.horizontal.below.rectangle"},
    {"devices", "Devices", "hifispeaker.2"},
    {"limiter", "Limiter & gain", "shield.checkered"},
    {"presetsAll", "All presets", "music.note.list"},
    {"presetsFactory", "Factory", "music.note"},
    {"presetsMine", "Mine", "heart"},
    {"setup", "Setup guide", "gearshape"},
    {"programs", "Programs", "square.grid.2x2"},
}};

const Description &describe(Destinatie destination) {
    return descriptions.at(static_cast<std::size_t>(destination));
}

} // namespace

std::string_view rawValue(Destinatie destination) { return describe(destination).rawValue; }
std::string_view title(Destinatie destination) { return describe(destination).title; }
std::string_view symbol(Destinatie destination) { return describe(destination).symbol; }

const std::array<GrupDestinatii, 4> &grupuri() {
    using enum Destinatie;
    static const std::array<GrupDestinatii, 4> groups{{
        {"Tuning", {equalizer, spatial, mixer}},
        {"Output", {devices, limiter, programs}},
        {"Presets", {presetsAll, presetsFactory, presetsMine}},
        {"Help", {setup}},
    }};
    return groups;
}

std::string insigna(Destinatie destination, const InsigneSource &source) {
    switch (destination) {
    case Destinatie::equalizer:
        return fmt::format("{} bands", source.bandCount);
    case Destinatie::spatial:
        return fmt::format("{} on", spatialStagesOn(source.spatial));
    case Destinatie::mixer:
        return fmt::format("{} on", colourStagesOn(source.mixer));
    case Destinatie::devices:
        return fmt::format("{} found", source.deviceCount);
    case Destinatie::limiter:
        return source.mixer.limiterEnabled ? "on" : "off";
    case Destinatie::presetsAll:
        return std::to_string(countOf(PresetFilter::all, source.presets));
    case Destinatie::presetsFactory:
        return std::to_string(countOf(PresetFilter::factory, source.presets));
    case Destinatie::presetsMine:
        return std::to_string(countOf(PresetFilter::mine, source.presets));
    case Destinatie::setup:
    case Destinatie::programs:
        break;
    }
    return {};
}

} // namespace quorbel
