#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace quorbel {

/// A file that could not be read. `what()` is the reason, without the file's name.
class TextFileError : public std::runtime_error {
  public:
    enum class Reason { missing, directory, irregular, tooLarge, system };

    TextFileError(Reason reason, const std::string &text)
        : std::runtime_error(text), reason_(reason) {}

    [[nodiscard]] Reason reason() const { return reason_; }

  private:
    Reason reason_;
};

/// Returns the whole text of a file. Never waits and never reads without end: only a regular file
/// of at most `maximumBytes` is taken. Throws TextFileError.
[[nodiscard]] std::string readTextFile(const std::string &path, std::size_t maximumBytes);

} // namespace quorbel
