#pragma once

#include "platform/core/PCMBuffer.h"
#include "platform/core/StreamFormat.h"
#include "platform/dsp/SampleRateConverter.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quorbel {

/// Converts captured cycles of one fixed format to the chain's format; keeps its state between
/// cycles. At equal rates it only checks the length. Made [control], used [capture].
class CaptureConversion {
  public:
    /// Throws std::invalid_argument for rates that cannot be converted, std::bad_alloc.
    CaptureConversion(const StreamFormat &source, const StreamFormat &chain);

    [[nodiscard]] const StreamFormat &source() const noexcept { return source_; }
    [[nodiscard]] bool copies() const noexcept { return converter_ == nullptr; }

    /// Returns one cycle at the chain's rate, valid until the next call. Null if the cycle is lost:
    /// it was longer than the buffer, or the converter gave no frames.
    [[nodiscard]] const PCMBuffer *convert(const PCMBuffer &cycle) noexcept;

    /// Frames to put into the ring before the first block; null at equal rates. Converted blocks
    /// and the playback side's demand each vary by a frame: without this reserve the ring would
    /// underrun.
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
