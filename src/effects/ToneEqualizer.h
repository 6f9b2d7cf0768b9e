#pragma once

#include "equalizer/ParametricEqualizerNode.h"

#include <array>
#include <cstddef>

namespace quorbel {

/// The three tone controls: shelf below 100 Hz, peak at 1 kHz, shelf above 5 kHz. [main]
class ToneEqualizer {
  public:
    enum Band : std::size_t { bass, mid, treble, bandCount };

    ToneEqualizer();

    /// Sets all bands together, in dB; a band at 0 dB costs nothing and is bit-exact.
    void setGainsDB(const std::array<float, bandCount> &gainsDB);
    [[nodiscard]] float gainDB(Band band) const { return node_.band(band).gainDB; }

    /// The chain's stage.
    [[nodiscard]] ParametricEqualizerNode &node() { return node_; }

  private:
    ParametricEqualizerNode node_{bandCount};
};

} // namespace quorbel
