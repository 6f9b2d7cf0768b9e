#include "cli/SoundFileWriter.h"

#include "cli/CommandError.h"
#include "cli/NamelessFile.h"
#include "cli/WriteBehind.h"

#include <sndfile.h>

#include <algorithm>
#include <cstddef>
#include <system_error>
#include <utility>
#include <vector>

namespace quorbel {

namespace {

constexpr int sampleRate = 48000;
constexpr std::uint64_t bytesPerFrame = 2 * sizeof(float);

// Many blocks of the chain in one call of the system.
constexpr std::uint32_t bufferFrames = 8192;

// Below it a plain WAV file is certain to do, also where the length was only estimated.
constexpr std::uint64_t plainWavBytes = std::uint64_t{3} << 30U;

struct Closer {
    void operator()(SNDFILE *file) const { sf_close(file); }
};

} // namespace

struct SoundFileWriter::State {
    explicit State(const std::string &path) : target(path) {}

    NamelessFile target;
    WriteBehind writeBehind{target.descriptor()};
    std::unique_ptr<SNDFILE, Closer> file;
    std::vector<float> interleaved = std::vector<float>(std::size_t{2} * bufferFrames);
    std::uint32_t framesBuffered = 0; ///< of those, what the file has not had yet
};

SoundFileWriter::SoundFileWriter(const std::string &path, std::uint64_t expectedFrames)
    : path_(path), state_(std::make_unique<State>(path)) {
    const bool large = expectedFrames == 0 || expectedFrames > plainWavBytes / bytesPerFrame;
    SF_INFO info{};
    info.samplerate = sampleRate;
    info.channels = 2;
    info.format = (large ? SF_FORMAT_RF64 : SF_FORMAT_WAV) | SF_FORMAT_FLOAT;
    state_->file.reset(sf_open_fd(state_->target.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (!state_->file)
        fail(sf_strerror(nullptr));
    // Its peaks carry the time of writing, and equal sound must give equal files.
    sf_command(state_->file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    if (large)
        sf_command(state_->file.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

SoundFileWriter::~SoundFileWriter() = default;

void SoundFileWriter::write(const AudioBufferList &sound, std::uint32_t frames) {
    State &state = *state_;
    for (std::uint32_t done = 0; done < frames;) {
        const std::uint32_t count = std::min(frames - done, bufferFrames - state.framesBuffered);
        const float *const left = sound.data[0] + done;
        const float *const right = sound.data[1] + done;
        float *const samples = state.interleaved.data() + std::size_t{2} * state.framesBuffered;
        for (std::uint32_t frame = 0; frame < count; ++frame) {
            samples[2 * frame] = left[frame];
            samples[2 * frame + 1] = right[frame];
        }
        done += count;
        state.framesBuffered += count;
        if (state.framesBuffered == bufferFrames)
            flush();
    }
}

void SoundFileWriter::flush() {
    const sf_count_t frames = std::exchange(state_->framesBuffered, 0);
    if (sf_writef_float(state_->file.get(), state_->interleaved.data(), frames) != frames)
        fail(sf_strerror(state_->file.get()));
    const auto bytes = static_cast<std::uint64_t>(frames) * bytesPerFrame;
    if (const int error = state_->writeBehind.wrote(bytes); error != 0)
        fail(std::generic_category().message(error));
}

void SoundFileWriter::finish() {
    flush();
    if (const int status = sf_close(state_->file.release()); status != SF_ERR_NO_ERROR)
        fail(sf_error_number(status));
    state_->target.takeName();
}

void SoundFileWriter::fail(const std::string &reason) const {
    throw CommandError(path_ + ": cannot be written: " + reason);
}

} // namespace quorbel
