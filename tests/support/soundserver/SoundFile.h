#pragma once

#include <filesystem>
#include <vector>

namespace quorbel::soundserver {

class Sound;

struct StereoSound {
    int sampleRate = 48000;
    std::vector<float> left;
    std::vector<float> right;
};

/// Writes a WAV file of 32-bit floats. Throws `ServerError`.
void writeSoundFile(const std::filesystem::path &path, const StereoSound &sound);

/// `seconds` of what a player would play.
StereoSound rendered(Sound &sound, double seconds, int sampleRate = 48000);

} // namespace quorbel::soundserver
