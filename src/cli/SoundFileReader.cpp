#include "cli/SoundFileReader.h"

#include "cli/CommandError.h"

#include <fmt/format.h>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

// The system call takes half of a read's time; this size spreads it over many blocks of the chain.
constexpr std::uint32_t readerFrames = 8192;

/// Opens a regular file without blocking, as a named pipe would.
int openRegularFile(const std::string &path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0)
        throw CommandError(path + ": " + std::generic_category().message(errno));
    struct stat status {};
    std::string problem;
    if (::fstat(file, &status) != 0)
        problem = std::generic_category().message(errno);
    else if (S_ISDIR(status.st_mode))
        problem = "is a directory, not a sound file";
    else if (!S_ISREG(status.st_mode))
        problem = "is not a regular file";
    else if (status.st_size == 0)
        problem = "is empty";
    if (!problem.empty()) {
        ::close(file);
        throw CommandError(path + ": " + problem);
    }
    return file;
}

/// The leading decimal number of `text`, after blanks; 0 if there is none.
std::uint64_t leadingNumber(std::string_view text) {
    std::uint64_t value = 0;
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            break;
        value = value * 10 + static_cast<std::uint64_t>(digit - '0');
    }
    return value;
}

/// True for a line of libsndfile's log that reports a file shorter than its header says, such as
/// "data : 176400 (should be 88158)".
bool tellsOfCut(std::string_view line) {
    if (line.find("truncated file") != std::string_view::npos)
        return true;
    constexpr std::string_view note = "(should be ";
    const auto noteAt = line.find(note);
    const auto colon = line.find(':');
    if (noteAt == std::string_view::npos || colon > noteAt)
        return false;

    // The sample chunk's name in each format. The total length is often some bytes off; it counts
    // only in the two formats where libsndfile compares nothing else.
    std::string_view name = line.substr(0, colon);
    name.remove_prefix(std::min(name.size(), name.find_first_not_of(' ')));
    constexpr std::array<std::string_view, 5> telling{"data", "Data", "SSND", "riff", "Riff size"};
    if (std::none_of(telling.begin(), telling.end(),
                     [&](std::string_view start) { return name.starts_with(start); }))
        return false;

    // A writer that cannot seek back leaves such a length.
    constexpr std::uint64_t unknownFrom = 0x7FFF0000;
    const std::uint64_t stated = leadingNumber(line.substr(colon + 1));
    const std::uint64_t present = leadingNumber(line.substr(noteAt + note.size()));
    const bool unknown = stated >= unknownFrom && stated <= 0xFFFFFFFF;
    return stated > present && !unknown;
}

/// Searches libsndfile's log, its only report of a truncated file.
bool isCutShort(SNDFILE *file) {
    std::array<char, 16384> buffer{};
    sf_command(file, SFC_GET_LOG_INFO, buffer.data(), static_cast<int>(buffer.size()));
    std::string_view log(buffer.data());
    while (!log.empty()) {
        const std::string_view line = log.substr(0, log.find('\n'));
        if (tellsOfCut(line))
            return true;
        log.remove_prefix(std::min(log.size(), line.size() + 1));
    }
    return false;
}

struct Closer {
    void operator()(SNDFILE *file) const { sf_close(file); }
};

} // namespace

struct SoundFileReader::State {
    std::unique_ptr<SNDFILE, Closer> file;
    SF_INFO info{};
    std::uint64_t framesRead = 0;
    std::vector<float> interleaved;   ///< `readerFrames` frames
    std::uint32_t framesTaken = 0;    ///< buffered frames that callers have read
    std::uint32_t framesBuffered = 0; ///< frames that the file filled

    /// False for MPEG and Ogg: libsndfile may only estimate their length.
    [[nodiscard]] bool lengthIsExact() const {
        const int format = info.format & SF_FORMAT_TYPEMASK;
        return format != SF_FORMAT_MPEG && format != SF_FORMAT_OGG;
    }
};

SoundFileReader::SoundFileReader(const std::string &path)
    : path_(path), state_(std::make_unique<State>()) {
    State &state = *state_;
    state.file.reset(sf_open_fd(openRegularFile(path), SFM_READ, &state.info, SF_TRUE));
    if (!state.file)
        fail("is not a sound file that can be read: " + std::string(sf_strerror(nullptr)));
    if (state.info.channels != 1 && state.info.channels != 2)
        fail(fmt::format("has {} channels; only mono and stereo can be processed",
                         state.info.channels));
    if (state.info.samplerate <= 0)
        fail(fmt::format("has an impossible sample rate of {} Hz", state.info.samplerate));
    if (isCutShort(state.file.get()))
        fail("is truncated: it ends before its header says");
    if (state.info.frames <= 0)
        fail("holds no sound");
    state.interleaved.resize(std::size_t{readerFrames} *
                             static_cast<std::size_t>(state.info.channels));
}

SoundFileReader::~SoundFileReader() = default;

std::uint32_t SoundFileReader::sampleRate() const {
    return static_cast<std::uint32_t>(state_->info.samplerate);
}

std::uint64_t SoundFileReader::expectedFrames() const {
    return state_->info.frames == SF_COUNT_MAX ? 0
                                               : static_cast<std::uint64_t>(state_->info.frames);
}

std::uint32_t SoundFileReader::read(const AudioBufferList &output, std::uint32_t frames) {
    State &state = *state_;
    const auto channels = static_cast<std::size_t>(state.info.channels);
    std::uint32_t done = 0;
    while (done < frames) {
        if (state.framesTaken == state.framesBuffered)
            fillBuffer();
        const std::uint32_t count =
            std::min(frames - done, state.framesBuffered - state.framesTaken);
        if (count == 0)
            break;
        const float *samples = state.interleaved.data() + state.framesTaken * channels;
        float *const left = output.data[0] + done;
        float *const right = output.data[1] + done;
        if (channels == 1) {
            std::copy_n(samples, count, left);
            std::copy_n(samples, count, right);
        } else {
            for (std::uint32_t frame = 0; frame < count; ++frame) {
                left[frame] = samples[2 * frame];
                right[frame] = samples[2 * frame + 1];
            }
        }
        done += count;
        state.framesTaken += count;
    }
    return done;
}

/// Buffers the next frames of the file; none at its end.
void SoundFileReader::fillBuffer() {
    State &state = *state_;
    const auto got = static_cast<std::uint32_t>(
        sf_readf_float(state.file.get(), state.interleaved.data(), readerFrames));
    state.framesTaken = 0;
    state.framesBuffered = got;
    state.framesRead += got;
    if (got == readerFrames)
        return;
    if (sf_error(state.file.get()) != SF_ERR_NO_ERROR)
        fail(sf_strerror(state.file.get()));
    if (state.lengthIsExact() && state.framesRead < expectedFrames())
        fail(fmt::format("is truncated: {} of {} frames are there", state.framesRead,
                         expectedFrames()));
}

void SoundFileReader::fail(const std::string &reason) const {
    throw CommandError(path_ + ": " + reason);
}

} // namespace quorbel
