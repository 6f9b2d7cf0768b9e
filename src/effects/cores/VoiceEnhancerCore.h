#pragma once

#include "effects/cores/Biquad.h"

#include <array>
#include <cstdint>

namespace quorbel {

/// A cut around 300 Hz and a boost around 3 kHz, mixed into the dry sound.
class VoiceEnhancerCore {
  public:
    /// `sampleRate` in Hz. Starts from silence. Not while processing.
    void prepare(float sampleRate) noexcept;

    /// Back to silence. [render]
    void clear() noexcept { channels_ = {}; }

    /// In place. `mix` 0 to 1; `presenceDB` is a boost, `mudDB` a cut, both 0 or more. [render]
    void process(float *left, float *right, std::uint32_t frames, float mix, float presenceDB,
                 float mudDB) noexcept;

  private:
    struct Channel {
        BiquadState mud;
        BiquadState presence; // its input is the mud filter's output
    };

    float sampleRate_ = 48'000.0F;
    std::array<Channel, 2> channels_{};
};

} // namespace quorbel
