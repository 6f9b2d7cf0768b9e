#include "platform/hardware/pipewire/WatchdogLink.h"

#include <fmt/format.h>
#include <spawn.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char **environ;

namespace quorbel {
namespace {

/// Path of the watchdog relative to this program: as installed, else as in the build tree. Empty if
/// neither exists.
std::string watchdogProgram() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return {};
    for (const char *place : {QUORBEL_WATCHDOG, "../libexec/quorbel-watchdog"}) {
        std::string program = (self.parent_path() / place).lexically_normal().string();
        if (access(program.c_str(), X_OK) == 0)
            return program;
    }
    return {};
}

} // namespace

std::string serverLine(std::uint32_t serverCookie) {
    return fmt::format("{}{}", watchdogWord::server, serverCookie);
}

WatchdogLink::WatchdogLink(std::uint32_t serverCookie) : serverCookie_(serverCookie) {
    start(RouteLedger());
}

WatchdogLink::~WatchdogLink() { abandon(); }

// One end of a socket pair is the watchdog's standard input. The other end is ours alone, so it
// closes however we end. (Writes to a dead reader raise a signal, which only sockets can suppress.)
// Sends the current state before the watchdog starts.
void WatchdogLink::start(const RouteLedger &routed) {
    const std::string program = watchdogProgram();
    std::array<int, 2> ends{};
    if (program.empty() || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return;
    socket_ = ends[1];
    isBehind_ = false;
    send(serverLine(serverCookie_));
    tellAll(routed);
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
        posix_spawn(&pid_, program.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    if (result != 0) {
        close(std::exchange(socket_, -1));
        pid_ = -1;
    }
}

void WatchdogLink::abandon() {
    if (socket_ >= 0)
        close(std::exchange(socket_, -1));
    if (pid_ > 0)
        waitpid(std::exchange(pid_, -1), nullptr, WNOHANG);
}

void WatchdogLink::send(std::string_view line) {
    if (socket_ < 0)
        return;
    const std::string text = fmt::format("{}\n", line);
    const ssize_t sent = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    // The watchdog ignores a truncated line, with any text that follows on the same line.
    isBehind_ = isBehind_ || sent != static_cast<ssize_t>(text.size());
}

void WatchdogLink::tellAll(const RouteLedger &routed) {
    isBehind_ = false;
    send(""); // ends a truncated line
    send(watchdogWord::reset);
    for (const RoutedStream &stream : routed.streams())
        send(stream.encoded());
}

bool WatchdogLink::beat(const RouteLedger &routed, bool isResting) {
    if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) == pid_) {
        pid_ = -1;
        abandon();
        start(routed);
    } else if (isBehind_) {
        tellAll(routed);
    }
    send(isResting ? watchdogWord::resting : watchdogWord::alive);
    bool hasTaken = false;
    std::array<char, 64> words{};
    while (socket_ >= 0) {
        const ssize_t count = recv(socket_, words.data(), words.size(), MSG_DONTWAIT);
        if (count <= 0)
            break;
        hasTaken = hasTaken || std::string_view(words.data(), static_cast<std::size_t>(count))
                                       .find(watchdogWord::took) != std::string_view::npos;
    }
    return hasTaken;
}

void WatchdogLink::finish() {
    if (socket_ < 0)
        return;
    if (isBehind_)
        send("");
    send(watchdogWord::clean);
    close(std::exchange(socket_, -1));
    // The watchdog ends soon; if we end first, init reaps it.
    for (int attempt = 0; attempt < 100 && waitpid(pid_, nullptr, WNOHANG) == 0; ++attempt)
        usleep(1000);
    pid_ = -1;
}

} // namespace quorbel
