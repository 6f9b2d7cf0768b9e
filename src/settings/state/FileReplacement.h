#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace quorbel {

/// A file that could not be replaced; what was there before is still there. `what()` is the
/// system's description of the reason.
class FileReplacementError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The file that a path leads to through symbolic links, whether it exists or not. A circle of
/// links leads to the path itself.
[[nodiscard]] std::string fileBehindLinks(const std::string &path);

/// Makes the missing folders above `path`, readable by the user alone. Throws FileReplacementError.
void makeFolderOf(const std::string &path);

/// Throws FileReplacementError where the path leads to something other than a regular file, which
/// a rename would replace too.
void requireFileOrNothing(const std::string &path);

/// Gives the file at `path` a new content, as a whole or not at all, whatever happens meanwhile:
/// the content goes to a temporary file beside it, reaches the disk, and then takes the name. On
/// return the change itself has reached the disk too. Missing folders are made, readable by the
/// user alone. Where `path` is a symbolic link, the file that it names is replaced. Throws
/// FileReplacementError, also where something other than a regular file has the name.
void replaceFile(const std::string &path, std::string_view content);

} // namespace quorbel
