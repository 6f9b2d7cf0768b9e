#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace quorbel {

/// A file that could not be replaced: the old one is still there, unless only the folder could not
/// be synced. `what()` is the system's description of the reason.
class FileReplacementError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The new content of a file, which takes the file's name as a whole or not at all. Until then it
/// has no name where the file system allows that, and vanishes with the process; elsewhere it is a
/// hidden file beside the target.
///
/// If the path is a symbolic link, the file that it leads to is replaced. A file that exists keeps
/// its permissions.
class FileReplacement {
  public:
    /// Throws FileReplacementError where the target cannot be written, is not a regular file, or
    /// its folder takes no new files.
    explicit FileReplacement(const std::string &path);
    ~FileReplacement();
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    /// The new content, to be read and written by others.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// Appends to the new content. Throws FileReplacementError.
    void write(std::string_view bytes);

    /// Replaces the target. On return both the content and the name are on the disk. Throws
    /// FileReplacementError.
    void commit();

  private:
    std::string target_;    ///< behind links
    std::string temporary_; ///< name until the commit; empty for none
    int descriptor_ = -1;
};

/// Gives the file at `path` a new content with a FileReplacement. Missing folders are made,
/// readable by the user alone. Throws FileReplacementError.
void replaceFile(const std::string &path, std::string_view content);

/// The file that a path leads to through symbolic links, whether it exists or not. A circle of
/// links leads to the path itself.
[[nodiscard]] std::string fileBehindLinks(const std::string &path);

/// Makes the missing folders above `path`, readable by the user alone. Throws FileReplacementError.
void makeFolderOf(const std::string &path);

/// Throws FileReplacementError where the path leads to something other than a regular file, which
/// a rename would replace too.
void requireFileOrNothing(const std::string &path);

struct MovedFile {
    std::string name;      ///< the new file name; with its folder where links led to another one
    std::error_code error; ///< why the file could not be moved; none when it was
};

/// Moves a file that cannot be used, but may be of value to the user, out of the way: to
/// `<stem>.corrupt-<seconds since 1970>.json` in its folder. Symbolic links stay; the file that
/// they lead to is moved. Never replaces another file: if the name is taken, the new one gets a
/// number.
MovedFile moveAside(const std::string &path, std::string_view stem = "state");

} // namespace quorbel
