#pragma once

#include <filesystem>
#include <vector>

namespace quorbel::soundserver {

/// Two channels of equal length; 1 is full scale.
struct StereoSound {
    int sampleRate = 48000;
    std::vector<float> left;
    std::vector<float> right;
};

/// Writes a WAV file of 32-bit floats. Throws `ServerError`.
void writeSoundFile(const std::filesystem::path &path, const StereoSound &sound);

} // namespace quorbel::soundserver
