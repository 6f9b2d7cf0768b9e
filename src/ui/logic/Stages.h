#pragma once

#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <array>
#include <string_view>

namespace quorbel {

// Number of enabled stages per screen.

/// Counts width, XTC, reverb, bass and voice.
[[nodiscard]] int spatialStagesOn(const SpatialConfig &spatial);
/// Counts saturation and crossfeed.
[[nodiscard]] int colourStagesOn(const MixerConfig &mixer);
/// Counts limiter, auto gain and manual loudness.
[[nodiscard]] int levelStagesOn(const MixerConfig &mixer);

/// Effect of a stage on the sound and its limits, in one line. The manual's section of that name
/// begins with the same words.
struct StageHelp {
    std::string_view stage; ///< title of its card
    std::string_view help;
};

/// In the order of the chain.
[[nodiscard]] const std::array<StageHelp, 12> &stageHelps();

/// Empty for an unknown stage.
[[nodiscard]] std::string_view stageHelp(std::string_view stage);

} // namespace quorbel
