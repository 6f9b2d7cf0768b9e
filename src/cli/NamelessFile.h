#pragma once

#include <string>

namespace quorbel {

/// A file being written that gets its name only when it is complete. Where the file system can, it
/// has no name at all until then and vanishes with the process; elsewhere it is a hidden file
/// beside the target.
class NamelessFile {
  public:
    /// A link stays a link: what it points to is replaced. Throws CommandError if the target cannot
    /// be written, is not a regular file or its folder takes no new files.
    explicit NamelessFile(const std::string &target);
    ~NamelessFile();
    NamelessFile(const NamelessFile &) = delete;
    NamelessFile &operator=(const NamelessFile &) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// Replaces the target with what has reached the disk. Throws CommandError.
    void takeName();

  private:
    [[noreturn]] void failWithErrno() const;

    std::string target_;    ///< as the user gave it
    std::string resolved_;  ///< behind links
    std::string temporary_; ///< its name until it is complete, empty for none
    int descriptor_ = -1;
};

} // namespace quorbel
