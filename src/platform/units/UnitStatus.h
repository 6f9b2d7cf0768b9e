#pragma once

#include "platform/core/Status.h"

#include <stdexcept>
#include <string>

namespace quorbel {

// Errors of audio units, with the conventional codes of such interfaces.
inline constexpr Status statusUninitialized = -10867;      ///< rendering without render resources
inline constexpr Status statusFormatNotSupported = -10868; ///< a format that the unit cannot take
inline constexpr Status statusTooManyFrames = -10874;      ///< more than `maximumFramesToRender`
inline constexpr Status statusComponentNotFound = -3000;   ///< no unit of that description
inline constexpr Status statusOutOfMemory = -108;

/// Failure to construct a unit. Thrown by constructors; `AudioUnitRegistry` passes the status on.
class AudioUnitError : public std::runtime_error {
  public:
    AudioUnitError(Status status, const std::string &text)
        : std::runtime_error(text), status_(status) {}
    [[nodiscard]] Status status() const noexcept { return status_; }

  private:
    Status status_;
};

} // namespace quorbel
