#include "settings/files/FileReplacement.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quorbel {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(int errorNumber) {
    throw FileReplacementError(std::generic_category().message(errorNumber));
}

/// Makes new and changed names in this folder survive a power cut.
void syncFolder(const fs::path &folder) {
    const int descriptor =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // A folder without read permission can be written to, but not synced.
    const int result = ::fsync(descriptor);
    const int errorNumber = errno;
    ::close(descriptor);
    if (result != 0 && errorNumber != EINVAL) // EINVAL: the file system cannot sync folders
        fail(errorNumber);
}

void makeFolder(const fs::path &folder) {
    std::error_code ignored;
    if (folder.empty() || fs::is_directory(folder, ignored))
        return;
    makeFolder(folder.parent_path());
    // A file in the folder's place fails later, when the folder is used.
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        fail(errno);
    syncFolder(folder.parent_path());
}

/// Returns an unused hidden name beside `path`.
std::string freeNameBeside(const fs::path &path) {
    for (unsigned attempt = 0;; ++attempt) {
        const std::string name =
            ".ostrafine-" + std::to_string(::getpid()) + "-" + std::to_string(attempt);
        std::string candidate = path.parent_path() / name;
        struct stat status {};
        if (::lstat(candidate.c_str(), &status) != 0)
            return candidate;
    }
}

} // namespace

std::string fileBehindLinks(const std::string &path) {
    constexpr int mostLinks = 40; // Linux's own limit
    fs::path target = path;
    std::error_code error;
    for (int links = 0; fs::is_symlink(target, error); ++links) {
        if (links == mostLinks)
            return path;
        target = target.parent_path() / fs::read_symlink(target, error);
        if (error)
            return path;
    }
    return target;
}

void makeFolderOf(const std::string &path) { makeFolder(fs::path(path).parent_path()); }

void requireFileOrNothing(const std::string &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode))
        return;
    if (S_ISDIR(status.st_mode))
        fail(EISDIR);
    throw FileReplacementError(path + " is not a regular file");
}

FileReplacement::FileReplacement(const std::string &path) : target_(fileBehindLinks(path)) {
    constexpr mode_t permissionBits = 07777;
    requireFileOrNothing(path);
    struct stat status {};
    const bool exists = ::stat(target_.c_str(), &status) == 0;
    if (exists ? ::access(target_.c_str(), W_OK) != 0 : errno != ENOENT)
        fail(errno);
    const fs::path folder = fs::path(target_).parent_path();
    // Naming a nameless file needs /proc.
    const bool canBeNameless = ::access("/proc/self/fd", X_OK) == 0;
    if (canBeNameless)
        descriptor_ =
            ::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    if (descriptor_ < 0 &&
        (!canBeNameless || errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        std::string name = freeNameBeside(target_);
        descriptor_ = ::open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (descriptor_ >= 0)
            temporary_ = std::move(name);
    }
    if (descriptor_ < 0)
        fail(errno);
    // Some file systems have fixed permissions for all files.
    if (exists)
        static_cast<void>(::fchmod(descriptor_, status.st_mode & permissionBits));
}

FileReplacement::~FileReplacement() {
    ::close(descriptor_);
    if (!temporary_.empty())
        ::unlink(temporary_.c_str());
}

void FileReplacement::write(std::string_view bytes) {
    while (!bytes.empty()) {
        // A full disk accepts a part first; only the next call fails.
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            fail(errno);
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

// linkat cannot replace an existing name, so a nameless file first gets a free one.
void FileReplacement::commit() {
    // Syncs before the rename: otherwise a power cut could leave the name on an empty file.
    if (::fsync(descriptor_) != 0)
        fail(errno);
    if (temporary_.empty()) {
        const std::string self = "/proc/self/fd/" + std::to_string(descriptor_);
        std::string name = freeNameBeside(target_);
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0)
            fail(errno);
        temporary_ = std::move(name);
    }
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0)
        fail(errno);
    temporary_.clear();
    syncFolder(fs::path(target_).parent_path());
}

void replaceFile(const std::string &path, std::string_view content) {
    requireFileOrNothing(path);
    makeFolderOf(fileBehindLinks(path));
    FileReplacement file(path);
    file.write(content);
    file.commit();
}

namespace {

bool isTaken(const std::string &path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// Returns 0 or the system's error number; EEXIST if the name is taken.
int moveWithoutReplacing(const std::string &from, const std::string &to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // The file system lacks RENAME_NOREPLACE.
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
