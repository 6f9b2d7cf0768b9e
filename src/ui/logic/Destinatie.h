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

/// Screens of the window, listed in the sidebar.
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

/// Name used in QML, equal to the enumerator's.
[[nodiscard]] std::string_view rawValue(Destinatie destination);
[[nodiscard]] std::string_view title(Destinatie destination);
/// Name of its symbol in the symbol set.
[[nodiscard]] std::string_view symbol(Destinatie destination);

struct GrupDestinatii {
    std::string_view title;
    std::vector<Destinatie> destinations;
};

/// Groups of the sidebar, from top to bottom.
[[nodiscard]] const std::array<GrupDestinatii, 4> &grupuri();

/// Values behind the badges.
struct InsigneSource {
    std::size_t bandCount = 0;
    const SpatialConfig &spatial;
    const MixerConfig &mixer;
    std::size_t deviceCount = 0;
    const std::vector<Preset> &presets;
};

/// Badge beside a destination; empty if it has none.
[[nodiscard]] std::string insigna(Destinatie destination, const InsigneSource &source);

} // namespace quorbel
