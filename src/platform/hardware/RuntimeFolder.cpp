#include "platform/hardware/RuntimeFolder.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorbel {

int openRuntimeFolder() {
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime == '\0')
        return -1;
    const std::string path = std::string(runtime) + "/quorbel";
    if (mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return -1;
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {};
    const bool isOurs = folder >= 0 && fstat(folder, &status) == 0 && status.st_uid == geteuid() &&
                        (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    if (folder >= 0 && !isOurs)
        close(folder);
    return isOurs ? folder : -1;
}

int openRuntimeFile(int folder, const char *name, int flags) {
    const int file =
        openat(folder, name, flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, S_IRUSR | S_IWUSR);
    struct stat status {};
    const bool isOurs = file >= 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
                        status.st_uid == geteuid();
    if (file >= 0 && !isOurs)
        close(file);
    return isOurs ? file : -1;
}

InstanceLock::InstanceLock() {
    const int folder = openRuntimeFolder();
    if (folder < 0)
        return;
    file_ = openRuntimeFile(folder, "lock", O_RDWR | O_CREAT);
    close(folder);
    isHeld_ = file_ < 0 || flock(file_, LOCK_EX | LOCK_NB) == 0;
}

InstanceLock::~InstanceLock() {
    if (file_ >= 0)
        close(file_);
}

} // namespace quorbel
