#pragma once

#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

namespace quorbel {

// How many stages are switched on, by the screen that they are on.

/// Of width, XTC, reverb, bass and voice.
[[nodiscard]] int spatialStagesOn(const SpatialConfig &spatial);
/// Of saturation and crossfeed.
[[nodiscard]] int colourStagesOn(const MixerConfig &mixer);
/// Of limiter, auto gain and manual loudness.
[[nodiscard]] int levelStagesOn(const MixerConfig &mixer);

} // namespace quorbel
