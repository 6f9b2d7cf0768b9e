#include "cli/SoundFileWriter.h"

#include "cli/OutputFile.h"
#include "engine/ChainFormat.h"

#include <sndfile.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <system_error>
#include <utility>
#include <vector>

namespace quorbel {

namespace {

constexpr std::uint64_t bytesPerFrame = 2 * sizeof(float);

// Spreads the cost of one system call over many blocks of the chain.
constexpr std::uint32_t writerFrames = 8192;

// Plain WAV (4 GiB at most) is safe below this size, even if the length was only estimated.
constexpr std::uint64_t plainWavBytes = std::uint64_t{3} << 30U;

struct WriterCloser {
    void operator()(SNDFILE *file) const { sf_close(file); }
};

bool isOfTheDisk(int error) noexcept { return error == EIO || error == ENOSPC || error == EDQUOT; }

/// Writes a growing file to the disk during rendering, which would otherwise end with a long wait
/// for the disk. Drops written parts from the page cache, which hours of sound would fill.
class WriteBehind {
  public:
    explicit WriteBehind(int descriptor) : descriptor_(descriptor) {}

    /// Notes that the system has received the file's next `bytes`. Returns 0, or the errno of an
    /// earlier part's failed write. Does nothing if the file system cannot write behind.
    int wrote(std::uint64_t bytes) noexcept {
        handed_ += bytes;
        if (handed_ < started_ + chunkBytes)
            return 0;
        const auto offset = [](std::uint64_t position) { return static_cast<off64_t>(position); };
        sync_file_range(descriptor_, offset(started_), offset(handed_ - started_),
                        SYNC_FILE_RANGE_WRITE);
        // The previous chunk has had one chunk's time to reach the disk.
        if (started_ > written_) {
            constexpr unsigned all =
                SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
            // Linux reports a write error once: a later fsync of the whole file would miss it.
            if (sync_file_range(descriptor_, offset(written_), offset(started_ - written_), all) !=
                    0 &&
                isOfTheDisk(errno))
                return errno;
            posix_fadvise(descriptor_, offset(written_), offset(started_ - written_),
                          POSIX_FADV_DONTNEED);
        }
        written_ = started_;
        started_ = handed_;
        return 0;
    }

  private:
    // Takes a disk some tens of milliseconds.
    static constexpr std::uint64_t chunkBytes = std::uint64_t{8} << 20U;

    int descriptor_;
    std::uint64_t written_ = 0; ///< bytes on the disk
    std::uint64_t started_ = 0; ///< bytes requested to be written to the disk
    std::uint64_t handed_ = 0;  ///< bytes that the system has received
};

} // namespace

struct SoundFileWriter::State {
    explicit State(const std::string &path) : target(path) {}

    OutputFile target;
    WriteBehind writeBehind{target.descriptor()};
    std::unique_ptr<SNDFILE, WriterCloser> file;
    std::vector<float> interleaved = std::vector<float>(std::size_t{2} * writerFrames);
    std::uint32_t framesBuffered = 0; ///< frames that the file has not received
};

SoundFileWriter::SoundFileWriter(const std::string &path, std::uint64_t expectedFrames)
    : state_(std::make_unique<State>(path)) {
    const bool large = expectedFrames == 0 || expectedFrames > plainWavBytes / bytesPerFrame;
    SF_INFO info{};
    info.samplerate = static_cast<int>(chainSampleRate);
    info.channels = 2;
    info.format = (large ? SF_FORMAT_RF64 : SF_FORMAT_WAV) | SF_FORMAT_FLOAT;
    state_->file.reset(sf_open_fd(state_->target.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (!state_->file)
        state_->target.fail(sf_strerror(nullptr));
    // No peak chunk: it stores the time of writing, but equal sound must give equal files.
    sf_command(state_->file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    if (large)
        sf_command(state_->file.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

SoundFileWriter::~SoundFileWriter() = default;

void SoundFileWriter::write(const AudioBufferList &sound, std::uint32_t frames) {
    State &state = *state_;
    for (std::uint32_t done = 0; done < frames;) {
        const std::uint32_t count = std::min(frames - done, writerFrames - state.framesBuffered);
        const float *const left = sound.data[0] + done;
        const float *const right = sound.data[1] + done;
        float *const samples = state.interleaved.data() + std::size_t{2} * state.framesBuffered;
        for (std::uint32_t frame = 0; frame < count; ++frame) {
            samples[2 * frame] = left[frame];
            samples[2 * frame + 1] = right[frame];
        }
        done += count;
        state.framesBuffered += count;
        if (state.framesBuffered == writerFrames)
            flush();
    }
}

void SoundFileWriter::flush() {
    const sf_count_t frames = std::exchange(state_->framesBuffered, 0);
    if (sf_writef_float(state_->file.get(), state_->interleaved.data(), frames) != frames)
        state_->target.fail(sf_strerror(state_->file.get()));
    const auto bytes = static_cast<std::uint64_t>(frames) * bytesPerFrame;
    if (const int error = state_->writeBehind.wrote(bytes); error != 0)
        state_->target.fail(std::generic_category().message(error));
}

void SoundFileWriter::finish() {
    flush();
    if (const int status = sf_close(state_->file.release()); status != SF_ERR_NO_ERROR)
        state_->target.fail(sf_error_number(status));
    state_->target.commit();
}

} // namespace quorbel
