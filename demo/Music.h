#pragma once

#include "soundserver/SoundFile.h"

namespace quorbel::demo {

/// Composes a few bars with sound in every octave: drums, a bass line, chords and a melody, the
/// same on every machine. Its peak is 0.25, which leaves an equaliser 12 dB of headroom.
soundserver::StereoSound composeMusic(double seconds);

} // namespace quorbel::demo
