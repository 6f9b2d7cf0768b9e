#include "settings/files/SettingsFileLock.h"

#include "settings/files/FileReplacement.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace quorbel {

SettingsFileLock::SettingsFileLock(const std::string &settingsPath, double patienceSeconds) {
    using SteadyClock = std::chrono::steady_clock;
    constexpr auto pause = std::chrono::milliseconds(5);
    const auto deadline = SteadyClock::now() + std::chrono::duration<double>(patienceSeconds);

    const std::string target = fileBehindLinks(settingsPath);
    makeFolderOf(target);
    const std::string path = target + ".lock";
    file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                   S_IRUSR | S_IWUSR);
    if (file_ < 0)
        throw FileReplacementError(std::generic_category().message(errno));
    while (::flock(file_, LOCK_EX | LOCK_NB) != 0) {
        const int errorNumber = errno;
        if (errorNumber == ENOLCK || errorNumber == EOPNOTSUPP)
            return; // file system without locks for any program
        if ((errorNumber == EWOULDBLOCK || errorNumber == EINTR) && SteadyClock::now() < deadline) {
            std::this_thread::sleep_for(pause);
            continue;
        }
        ::close(file_);
        throw FileReplacementError(errorNumber == EWOULDBLOCK
                                       ? "another program is writing them and does not end"
                                       : std::generic_category().message(errorNumber));
    }
}

SettingsFileLock::~SettingsFileLock() { ::close(file_); }

} // namespace quorbel
