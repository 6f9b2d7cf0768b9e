#pragma once

#include "soundserver/Recorder.h"
#include "support/soundserver/Sounds.h"

#include <array>
#include <cstddef>

namespace quorbel::bench {

/// Sines of 1 kHz (left) and 2 kHz (right) at -12 dBFS. At 48 kHz every frame equals the frame one
/// period earlier, also after settled, distorting processing.
class SteadySound : public soundserver::Sound {
  public:
    static constexpr std::array<double, 2> hz = {1000.0, 2000.0};
    static constexpr double levelDB = -12.0;
    static constexpr std::size_t period = 48; ///< frames

    void fill(std::uint64_t position, float *left, float *right,
              std::uint32_t frames) noexcept override {
        left_.fill(position, left, left, frames);
        right_.fill(position, right, right, frames);
    }

  private:
    soundserver::Tone left_{hz[0], levelDB, 48000.0};
    soundserver::Tone right_{hz[1], levelDB, 48000.0};
};

/// Levels of the left and the right sine in dB relative to amplitude 1.
using SteadyLevels = std::array<double, 2>;

[[nodiscard]] SteadyLevels levelsOf(const soundserver::Recording &recording);

/// Number of interruptions: deviations of the left sine from the previous period. Counts those less
/// than `quantum` frames apart once, and ignores frames that the recorder missed.
[[nodiscard]] std::size_t interruptions(const soundserver::Recording &recording,
                                        std::size_t quantum);

} // namespace quorbel::bench
