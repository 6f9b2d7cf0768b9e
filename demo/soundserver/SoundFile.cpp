#include "soundserver/SoundFile.h"

#include "soundserver/Waiting.h"

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
    if (sf_close(file) != 0 || !written)
        throw ServerError("cannot write " + path.string() + ": " + sf_strerror(nullptr));
}

} // namespace quorbel::soundserver
