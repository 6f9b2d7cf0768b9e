#pragma once

#include <array>

namespace quorbel {

/// Centre frequencies in Hz of the ten octave bands from 31.5 Hz to 16 kHz (IEC 61260).
inline constexpr std::array<double, 10> octaveBandsHz{31.5, 63,   125,  250,  500,
                                                      1000, 2000, 4000, 8000, 16000};

} // namespace quorbel
