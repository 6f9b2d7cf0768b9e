#include "cli/NamelessFile.h"

#include "cli/CommandError.h"

#include <climits>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

std::string folderOf(const std::string &path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

/// A name beside `path` that nothing has yet.
std::string freeNameBeside(const std::string &path) {
    const auto slash = path.rfind('/');
    const std::string start = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    for (unsigned attempt = 0;; ++attempt) {
        std::string name =
            start + ".ostrafine-" + std::to_string(getpid()) + "-" + std::to_string(attempt);
        struct stat status {};
        if (lstat(name.c_str(), &status) != 0)
            return name;
    }
}

} // namespace

NamelessFile::NamelessFile(const std::string &target) : target_(target), resolved_(target) {
    struct stat status {};
    if (stat(target.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode))
            throw CommandError(target + ": is a directory");
        if (!S_ISREG(status.st_mode))
            throw CommandError(target + ": is not a regular file");
        if (access(target.c_str(), W_OK) != 0)
            failWithErrno();
    } else if (errno != ENOENT) {
        failWithErrno();
    }
    std::array<char, PATH_MAX> real{};
    if (realpath(target.c_str(), real.data()) != nullptr)
        resolved_ = real.data();

    const std::string folder = folderOf(resolved_);
    descriptor_ = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        temporary_ = freeNameBeside(resolved_);
        descriptor_ = open(temporary_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (descriptor_ < 0)
            temporary_.clear();
    }
    if (descriptor_ < 0)
        failWithErrno();
}

NamelessFile::~NamelessFile() {
    close(descriptor_);
    if (!temporary_.empty())
        unlink(temporary_.c_str());
}

// A nameless file can only be given a name that is free, so replacing takes two steps.
void NamelessFile::takeName() {
    if (fsync(descriptor_) != 0)
        failWithErrno();
    if (temporary_.empty()) {
        const std::string self = "/proc/self/fd/" + std::to_string(descriptor_);
        std::string name = freeNameBeside(resolved_);
        if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0)
            failWithErrno();
        temporary_ = std::move(name);
    }
    if (rename(temporary_.c_str(), resolved_.c_str()) != 0)
        failWithErrno();
    temporary_.clear();
}

void NamelessFile::failWithErrno() const {
    throw CommandError(target_ + ": cannot be written: " + std::generic_category().message(errno));
}

} // namespace quorbel
