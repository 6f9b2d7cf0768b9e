#pragma once

#include "platform/core/AudioBufferList.h"
#include "platform/core/StreamFormat.h"

#include <cstdint>
#include <vector>

namespace quorbel {

/// A block of planar sound with its format. Owns its storage (made once, reused for every cycle) or
/// views another's without copying.
class PCMBuffer {
  public:
    /// Owns zeroed storage for `frameCapacity` frames of at most `AudioBufferList::maximumBuffers`
    /// channels; the frame length starts at 0. Throws std::bad_alloc.
    PCMBuffer(StreamFormat format, std::uint32_t frameCapacity);

    /// Wraps `frames` frames of `list`. Allocates nothing. [any thread]
    static PCMBuffer wrapping(StreamFormat format, const AudioBufferList &list,
                              std::uint32_t frames) noexcept;

    PCMBuffer(PCMBuffer &&) noexcept = default;
    PCMBuffer &operator=(PCMBuffer &&) noexcept = default;
    PCMBuffer(const PCMBuffer &) = delete;
    PCMBuffer &operator=(const PCMBuffer &) = delete;
    ~PCMBuffer() = default;

    [[nodiscard]] const StreamFormat &format() const noexcept { return format_; }
    [[nodiscard]] std::uint32_t frameCapacity() const noexcept { return frameCapacity_; }
    [[nodiscard]] std::uint32_t frameLength() const noexcept { return frameLength_; }

    /// `frames` must not exceed the capacity.
    void setFrameLength(std::uint32_t frames) noexcept;

    /// The samples of one channel, or null if the buffer carries no data for it.
    [[nodiscard]] float *channelData(std::uint32_t channel) const noexcept {
        return channel < list_.bufferCount ? list_.data[channel] : nullptr;
    }

    [[nodiscard]] const AudioBufferList &bufferList() const noexcept { return list_; }

  private:
    PCMBuffer() = default;

    StreamFormat format_;
    std::uint32_t frameCapacity_ = 0;
    std::uint32_t frameLength_ = 0;
    std::vector<float> storage_;
    AudioBufferList list_;
};

} // namespace quorbel
