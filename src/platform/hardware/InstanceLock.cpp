#include "platform/hardware/InstanceLock.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorbel {

InstanceLock::InstanceLock() {
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime == '\0')
        return;
    const std::string path = std::string(runtime) + "/quorbel.lock";
    file_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    isHeld_ = file_ < 0 || flock(file_, LOCK_EX | LOCK_NB) == 0;
}

InstanceLock::~InstanceLock() {
    if (file_ >= 0)
        close(file_);
}

} // namespace quorbel
