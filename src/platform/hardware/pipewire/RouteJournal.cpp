#include "platform/hardware/pipewire/RouteJournal.h"

#include <spawn.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace quorbel {
namespace {

/// Path of the watchdog, from the place of this program: as installed, else as in the build tree.
/// Empty if it is in neither.
std::string watchdogProgram() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return {};
    for (const char *place : {QUORBEL_WATCHDOG, "../libexec/quorbel-watchdog"}) {
        const std::string program = (self.parent_path() / place).lexically_normal().string();
        if (access(program.c_str(), X_OK) == 0)
            return program;
    }
    return {};
}

/// Starts the watchdog with one end of a socket pair as its standard input; the other end is ours
/// alone, so that it closes whichever way we end. (A socket rather than a pipe: writing to one
/// whose reader was killed can be told not to raise a signal.)
bool startWatchdog(int &ourEnd, int &pid) {
    const std::string program = watchdogProgram();
    std::array<int, 2> ends{};
    if (program.empty() || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    std::string name = program;
    std::array<char *, 2> arguments{name.data(), nullptr};
    const int result =
        posix_spawn(&pid, program.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    if (result != 0) {
        close(ends[1]);
        return false;
    }
    ourEnd = ends[1];
    return true;
}

} // namespace

bool RouteLedger::take(std::string_view line) {
    if (const auto stream = RoutedStream::decode(line)) {
        streams_[{stream->streamID, stream->streamSerial}] = *stream;
        return true;
    }
    if (const auto released = decodeRelease(line)) {
        streams_.erase(*released);
        return true;
    }
    return false;
}

std::vector<RoutedStream> RouteLedger::streams() const {
    std::vector<RoutedStream> result;
    for (const auto &[_, stream] : streams_)
        result.push_back(stream);
    return result;
}

RouteJournal::RouteJournal() {
    if (!startWatchdog(watchdogSocket_, watchdogPid_))
        watchdogSocket_ = -1;
    const char *runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime == '\0')
        return;
    const std::string folder = std::string(runtime) + "/quorbel";
    if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
        return;
    path_ = folder + "/captured";
    RouteLedger ledger;
    std::ifstream old(path_);
    for (std::string line; std::getline(old, line);)
        ledger.take(line);
    leftovers_ = ledger.streams();
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
}

RouteJournal::~RouteJournal() {
    if (file_ >= 0)
        close(file_);
    if (watchdogSocket_ >= 0) {
        close(watchdogSocket_);
        waitpid(watchdogPid_, nullptr, WNOHANG);
    }
}

void RouteJournal::write(std::string line) {
    line += '\n';
    if (file_ >= 0 && ::write(file_, line.data(), line.size()) < 0) {
        close(file_);
        file_ = -1;
    }
    if (watchdogSocket_ >= 0 &&
        send(watchdogSocket_, line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0 &&
        errno != EAGAIN) {
        close(watchdogSocket_);
        watchdogSocket_ = -1;
        waitpid(watchdogPid_, nullptr, WNOHANG);
    }
}

void RouteJournal::routed(const RoutedStream &stream) { write(stream.encoded()); }

void RouteJournal::released(const RoutedStream &stream) { write(encodedRelease(stream)); }

void RouteJournal::allRestored() {
    if (!path_.empty())
        unlink(path_.c_str());
    if (file_ >= 0) {
        close(file_);
        file_ = -1;
    }
    if (watchdogSocket_ < 0)
        return;
    write(std::string(watchdogCleanWord));
    close(watchdogSocket_);
    watchdogSocket_ = -1;
    // It ends by itself in a moment; until then it is nobody's business but init's, should we end
    // first.
    for (int attempt = 0; attempt < 100 && waitpid(watchdogPid_, nullptr, WNOHANG) == 0; ++attempt)
        usleep(1000);
}

} // namespace quorbel
