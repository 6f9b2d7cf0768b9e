#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace quorbel {

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
