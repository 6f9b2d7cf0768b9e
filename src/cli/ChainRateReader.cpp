#include "cli/ChainRateReader.h"

#include "cli/CommandError.h"
#include "engine/ChainFormat.h"
#include "platform/graph/NonFinite.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace quorbel {

namespace {

constexpr auto chainRate = static_cast<std::uint32_t>(chainSampleRate);
constexpr std::uint32_t bufferFrames = 4096;

} // namespace

ChainRateReader::ChainRateReader(const std::string &path) : file_(path) {
    const std::uint32_t rate = file_.sampleRate();
    if (rate == chainRate)
        return;
    try {
        converter_ = std::make_unique<SampleRateConverter>(rate, chainRate, 2, bufferFrames);
    } catch (const std::invalid_argument &) {
        throw CommandError(fmt::format("{}: a sample rate of {} Hz cannot be converted to {} Hz",
                                       path, rate, chainRate));
    }
    input_.assign(std::size_t{2} * bufferFrames, 0.0F);

    // Leading silence pads the converter's latency to a whole number of frames at 48 kHz. These
    // frames are discarded, so that the first output frame matches the file's first.
    const auto latency = static_cast<std::uint64_t>(std::ceil(converter_->latencyFrames()));
    const std::uint64_t period = rate / std::gcd(rate, chainRate);
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): the converter has refused a rate of 0
    std::uint64_t silence = (period - latency % period) % period;
    std::uint64_t excess = (latency + silence) * chainRate / rate;
    std::vector<float> unused(std::size_t{2} * bufferFrames);
    while (excess > 0) {
        if (pendingFrames_ == 0 && silence > 0) {
            pending_ = AudioBufferList(input_.data(), input_.data() + bufferFrames);
            pendingFrames_ =
                static_cast<std::uint32_t>(std::min<std::uint64_t>(silence, bufferFrames));
            silence -= pendingFrames_;
        } else if (pendingFrames_ == 0) {
            fillInput();
        }
        excess -=
            convert(AudioBufferList(unused.data(), unused.data() + bufferFrames),
                    static_cast<std::uint32_t>(std::min<std::uint64_t>(excess, bufferFrames)));
    }
    framesOut_ = 0;
}

std::uint64_t ChainRateReader::expectedFrames() const {
    return atChainRate(file_.expectedFrames());
}

std::uint64_t ChainRateReader::atChainRate(std::uint64_t frames) const {
    const std::uint64_t rate = file_.sampleRate();
    return (frames * chainRate * 2 + rate) / (2 * rate);
}

std::uint32_t ChainRateReader::read(const AudioBufferList &output, std::uint32_t frames) {
    if (!converter_)
        return file_.read(output, frames);
    std::uint32_t done = 0;
    while (done < frames) {
        if (pendingFrames_ == 0)
            fillInput();
        std::uint64_t wanted = std::min(frames - done, bufferFrames);
        if (fileEnded_)
            wanted = std::min(wanted, atChainRate(fileFrames_) - framesOut_);
        if (wanted == 0)
            break;
        done += convert(output.advancedBy(done), static_cast<std::uint32_t>(wanted));
    }
    return done;
}

std::uint32_t ChainRateReader::convert(const AudioBufferList &output, std::uint32_t frames) {
    const auto [consumed, produced] = converter_->process(pending_, pendingFrames_, output, frames);
    pending_ = pending_.advancedBy(consumed);
    pendingFrames_ -= consumed;
    framesOut_ += produced;
    return produced;
}

/// Reads the next frames of the file, then silence, which flushes the converter.
void ChainRateReader::fillInput() {
    pending_ = AudioBufferList(input_.data(), input_.data() + bufferFrames);
    pendingFrames_ = fileEnded_ ? 0 : file_.read(pending_, bufferFrames);
    replacedFrames_ += replaceNonFinite(pending_, pendingFrames_);
    fileFrames_ += pendingFrames_;
    if (pendingFrames_ == 0) {
        fileEnded_ = true;
        std::fill(input_.begin(), input_.end(), 0.0F);
        pendingFrames_ = bufferFrames;
    }
}

} // namespace quorbel
