#include "settings/files/MoveAside.h"

#include "settings/files/FileReplacement.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace quorbel {

namespace {

bool isTaken(const std::string &path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// Returns 0 or the system's error number, EEXIST where something has the name already.
int moveWithoutReplacing(const std::string &from, const std::string &to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // The file system cannot promise it.
    if (isTaken(to))
        return EEXIST;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

} // namespace

MovedFile moveAside(const std::string &link, std::string_view stem) {
    constexpr int triedNames = 1000;
    const std::string path = fileBehindLinks(link);
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const auto unixSeconds = static_cast<long long>(std::time(nullptr));
    std::string name = fmt::format("{}.corrupt-{}.json", stem, unixSeconds);
    int errorNumber = moveWithoutReplacing(path, folder / name);
    for (int number = 2; errorNumber == EEXIST && number <= triedNames; ++number) {
        name = fmt::format("{}.corrupt-{}-{}.json", stem, unixSeconds, number);
        errorNumber = moveWithoutReplacing(path, folder / name);
    }
    const bool isElsewhere = folder != std::filesystem::path(link).parent_path();
    return {isElsewhere ? (folder / name).string() : name, {errorNumber, std::generic_category()}};
}

} // namespace quorbel
