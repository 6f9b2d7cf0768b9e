#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace quorbel {

/// Failure to replace a file. The old file is unchanged, unless only syncing the folder failed.
/// `what()` is the system's description of the reason.
class FileReplacementError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Replaces a file's content atomically. Until the commit the new file has no name and vanishes
/// with the process; file systems without nameless files get a hidden file beside the target.
///
/// Follows symbolic links and replaces the file at their end. An existing file keeps its
/// permissions.
class FileReplacement {
  public:
    /// Throws FileReplacementError if the target is unwritable or not a regular file, or its folder
    /// accepts no new files.
    explicit FileReplacement(const std::string &path);
    ~FileReplacement();
    FileReplacement(const FileReplacement &) = delete;
    FileReplacement &operator=(const FileReplacement &) = delete;

    /// The new content, for other readers and writers.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    /// Appends to the new content. Throws FileReplacementError.
    void write(std::string_view bytes);

    /// Replaces the target and syncs content and name to the disk. Throws FileReplacementError.
    void commit();

  private:
    std::string target_;    ///< behind links
    std::string temporary_; ///< name until the commit; empty if nameless
    int descriptor_ = -1;
};

/// Replaces the file at `path` with a FileReplacement. Creates missing folders, readable only by
/// the user. Throws FileReplacementError.
void replaceFile(const std::string &path, std::string_view content);

/// Follows symbolic links to a file, which may not exist. A cycle of links returns the path itself.
[[nodiscard]] std::string fileBehindLinks(const std::string &path);

/// Creates missing folders above `path`, readable only by the user. Throws FileReplacementError.
void makeFolderOf(const std::string &path);

/// Throws FileReplacementError if the path leads to anything but a regular file, because a rename
/// would replace that too.
void requireFileOrNothing(const std::string &path);

struct MovedFile {
    std::string name;      ///< the new file name; with its folder if links led to another folder
    std::error_code error; ///< reason of a failed move
};

/// Moves an unusable file, which the user may still want, to
/// `<stem>.corrupt-<seconds since 1970>.json` in its folder. Moves the file behind symbolic links
/// and keeps the links. Numbers the name if it is taken, and never replaces another file.
MovedFile moveAside(const std::string &path, std::string_view stem = "state");

} // namespace quorbel
