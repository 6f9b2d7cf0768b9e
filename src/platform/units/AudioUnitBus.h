#pragma once

#include "platform/core/Status.h"
#include "platform/core/StreamFormat.h"

#include <cstddef>
#include <vector>

namespace quorbel {

/// One connection point of a unit. [main]
class AudioUnitBus {
  public:
    /// Throws AudioUnitError (`statusFormatNotSupported`) for a format that describes no sound or
    /// has more channels than a buffer list holds.
    explicit AudioUnitBus(const StreamFormat &format);

    [[nodiscard]] const StreamFormat &format() const { return format_; }

    /// For the next allocation of render resources; fails as the constructor does, and then changes
    /// nothing.
    Status setFormat(const StreamFormat &format);

  private:
    StreamFormat format_;
};

/// The busses of one side of a unit, borrowed from it.
class AudioUnitBusArray {
  public:
    enum class Type { input, output };

    AudioUnitBusArray(Type type, std::vector<AudioUnitBus *> busses);

    [[nodiscard]] Type type() const { return type_; }
    [[nodiscard]] std::size_t count() const { return busses_.size(); }
    [[nodiscard]] AudioUnitBus &operator[](std::size_t index) const { return *busses_[index]; }

  private:
    Type type_;
    std::vector<AudioUnitBus *> busses_;
};

} // namespace quorbel
