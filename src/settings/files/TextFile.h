#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace quorbel {

/// Failure to read a file. `what()` is the reason without the file's name.
class TextFileError : public std::runtime_error {
  public:
    enum class Reason { missing, directory, irregular, tooLarge, system };

    TextFileError(Reason reason, const std::string &text)
        : std::runtime_error(text), reason_(reason) {}

    [[nodiscard]] Reason reason() const { return reason_; }

  private:
    Reason reason_;
};

/// Returns the whole text of a file. Accepts only a regular file of at most `maximumBytes`, so that
/// it neither blocks nor reads endlessly. Throws TextFileError.
[[nodiscard]] std::string readTextFile(const std::string &path, std::size_t maximumBytes);

} // namespace quorbel
