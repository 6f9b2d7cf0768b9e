#pragma once

#include "settings/records/MixerConfig.h"
#include "settings/records/Preset.h"
#include "settings/records/SpatialConfig.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// A screen of the window, as the sidebar lists it.
enum class Destinatie {
    equalizer,
    spatial,
    mixer,
    devices,
    limiter,
    presetsAll,
    presetsFactory,
    presetsMine,
    setup,
    programs,
};

/// The name by which the window's own code calls it: that of the enumerator.
[[nodiscard]] std::string_view rawValue(Destinatie destination);
[[nodiscard]] std::string_view title(Destinatie destination);
/// The name of its symbol in the symbol set.
[[nodiscard]] std::string_view symbol(Destinatie destination);

struct GrupDestinatii {
    std::string_view title;
    std::vector<Destinatie> destinations;
};

/// The groups of the sidebar, in its order.
[[nodiscard]] const std::array<GrupDestinatii, 4> &grupuri();

/// The sources of the badges.
struct InsigneSource {
    std::size_t bandCount = 0;
    const SpatialConfig &spatial;
    const MixerConfig &mixer;
    std::size_t deviceCount = 0;
    const std::vector<Preset> &presets;
};

/// The short text beside a destination; empty where there is none.
[[nodiscard]] std::string insigna(Destinatie destination, const InsigneSource &source);

} // namespace quorbel
