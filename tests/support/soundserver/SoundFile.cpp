#include "support/soundserver/SoundFile.h"

#include "support/soundserver/Sounds.h"
#include "support/soundserver/Waiting.h"

#include <sndfile.h>

namespace quorbel::soundserver {

void writeSoundFile(const std::filesystem::path &path, const StereoSound &sound) {
    std::vector<float> samples;
    samples.reserve(2 * sound.left.size());
    for (std::size_t frame = 0; frame < sound.left.size(); ++frame) {
        samples.push_back(sound.left[frame]);
        samples.push_back(sound.right[frame]);
    }
    SF_INFO format{};
    format.samplerate = sound.sampleRate;
    format.channels = 2;
    format.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE *file = sf_open(path.c_str(), SFM_WRITE, &format);
    const auto count = static_cast<sf_count_t>(samples.size());
    const bool written = file != nullptr && sf_write_float(file, samples.data(), count) == count;
    if (sf_close(file) != 0 || !written) {
        throw ServerError("cannot write " + path.string() + ": " + sf_strerror(nullptr));
    }
}

StereoSound rendered(Sound &sound, double seconds, int sampleRate) {
    StereoSound result;
    result.sampleRate = sampleRate;
    result.left.resize(static_cast<std::size_t>(seconds * sampleRate));
    result.right.resize(result.left.size());
    sound.fill(0, result.left.data(), result.right.data(),
               static_cast<std::uint32_t>(result.left.size()));
    return result;
}

} // namespace quorbel::soundserver
