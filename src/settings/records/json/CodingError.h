#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace quorbel {

/// Failure to read or write a value as JSON. `what()` is one printable line: the path of the value,
/// such as `presets[3].bands[0].filterType`, and the problem.
class CodingError : public std::runtime_error {
  public:
    /// An empty path means the document as a whole.
    CodingError(std::string path, std::string problem)
        : std::runtime_error(path.empty() ? problem : path + ": " + problem),
          path_(std::move(path)), problem_(std::move(problem)) {}

    [[nodiscard]] const std::string &path() const { return path_; }
    [[nodiscard]] const std::string &problem() const { return problem_; }

  private:
    std::string path_;
    std::string problem_;
};

class DecodingError : public CodingError {
    using CodingError::CodingError;
};

class EncodingError : public CodingError {
    using CodingError::CodingError;
};

} // namespace quorbel
