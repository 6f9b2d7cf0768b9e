#pragma once

#include "platform/core/PCMBuffer.h"
#include "platform/core/StreamFormat.h"
#include "platform/dsp/SampleRateConverter.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quorbel {

/// The way of captured cycles of one fixed format into the chain's format, state kept from cycle to
/// cycle. At equal rates it is nothing but the check of the length. Made [control], used [capture].
class CaptureConversion {
  public:
    /// Throws std::invalid_argument for rates that cannot be converted, std::bad_alloc.
    CaptureConversion(const StreamFormat &source, const StreamFormat &chain);

    [[nodiscard]] const StreamFormat &source() const noexcept { return source_; }
    [[nodiscard]] bool copies() const noexcept { return converter_ == nullptr; }

    /// One cycle in the chain's rate, valid until the next call; null if it is lost, because it is
    /// longer than the buffer for it or nothing came of it.
    [[nodiscard]] const PCMBuffer *convert(const PCMBuffer &cycle) noexcept;

    /// What has to lie in the ring before the first block. Blocks come out of a converter a frame
    /// longer or shorter from cycle to cycle, and what the playback side takes varies likewise:
    /// without this much in hand a frame would now and then be missing in the middle of sound. Null
    /// when copying.
    [[nodiscard]] const PCMBuffer *lead() const noexcept { return lead_ ? &*lead_ : nullptr; }

  private:
    const StreamFormat source_;
    const double ratio_; // chain frames per source frame
    const std::uint32_t capacity_;
    std::unique_ptr<SampleRateConverter> converter_; // null at equal rates
    std::optional<PCMBuffer> convertedBuffer;
    std::optional<PCMBuffer> lead_;
};

} // namespace quorbel
