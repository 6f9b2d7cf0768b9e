#include "platform/hardware/InstanceLock.h"

#include "platform/hardware/RuntimeFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quorbel {

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
