#pragma once

#include "effects/UnitHarness.h"

#include <map>
#include <string>

namespace quorbel {

/// Test signals for comparing units with their models: 1.5 s each at 48 kHz, at most full scale.
inline std::map<std::string, Stereo> modelSounds() {
    constexpr std::size_t frames = 72'000;
    std::map<std::string, Stereo> sounds;
    sounds["silence"] = Stereo(frames);
    sounds["sine"] = sine(997.0, frames, 0.9);
    sounds["noise"] = noise(frames, 1.0F);
    Stereo impulses(frames);
    for (std::size_t i = 0; i < frames; i += 4801) {
        impulses.left[i] = 1.0F;
        impulses.right[(i + 1700) % frames] = -1.0F;
    }
    sounds["impulses"] = impulses;

    // Noise bursts separated by silence, one channel later than the other.
    Stereo bursts = noise(frames, 1.0F, 7);
    for (std::size_t i = 0; i < frames; ++i) {
        bursts.left[i] *= i % 6000 < 900 ? 1.0F : 0.0F;
        bursts.right[i] *= (i + 2500) % 6000 < 900 ? 1.0F : 0.0F;
    }
    sounds["bursts"] = bursts;

    // Synthetic music: a bass line, a chord that decays and returns, hi-hat noise.
    Stereo music(frames);
    const Stereo hiss = noise(frames, 1.0F, 11);
    for (std::size_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / 48'000.0;
        const double beat = std::fmod(t, 0.5);
        const double bass = 0.4 * std::sin(2.0 * std::numbers::pi * (t < 0.75 ? 55.0 : 73.4) * t);
        const double envelope = std::exp(-4.0 * beat);
        double chordL = 0.0;
        double chordR = 0.0;
        for (const double hz : {261.6, 329.6, 392.0, 1046.5}) {
            chordL += 0.1 * std::sin(2.0 * std::numbers::pi * hz * t);
            chordR += 0.1 * std::sin(2.0 * std::numbers::pi * hz * 1.003 * t + 0.5);
        }
        const double hat = 0.15 * std::exp(-60.0 * beat);
        music.left[i] = static_cast<float>(bass + envelope * chordL + hat * double{hiss.left[i]});
        music.right[i] = static_cast<float>(bass + envelope * chordR + hat * double{hiss.right[i]});
    }
    sounds["music"] = music;
    return sounds;
}

} // namespace quorbel
