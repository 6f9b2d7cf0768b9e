#pragma once

#include "platform/hardware/simulated/DeviceCycles.h"

namespace quorbel {

/// Something that looks like music on meters and spectrum: a bass line, chords, a beat of noise,
/// the same in every run. Peaks near -3 dBFS.
[[nodiscard]] simulated::Sound simulatedMusic();

} // namespace quorbel
