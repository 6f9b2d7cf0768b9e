#include "platform/hardware/pipewire/RouteJournal.h"

#include "platform/hardware/RuntimeFolder.h"

#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace quorbel {
namespace {

constexpr const char *fileName = "captured";
constexpr const char *newFileName = "captured.new";
/// Longest journal in bytes: ours has a few lines per routed stream.
constexpr std::size_t longestJournal = 1U << 20U;
/// Outdated lines that the file may hold before it is rewritten.
constexpr std::size_t spareLines = 64;

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(file, text.data(), text.size());
        if (count <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

RouteJournal::RouteJournal(std::uint32_t serverCookie)
    : serverCookie_(serverCookie), watchdog_(serverCookie), folder_(openRuntimeFolder()) {
    if (folder_ < 0)
        return;
    readLeftovers();
    for (const RoutedStream &stream : leftovers_)
        ledger_.routed(stream);
    rewrite();
}

RouteJournal::~RouteJournal() {
    if (file_ >= 0)
        close(file_);
    if (folder_ >= 0)
        close(folder_);
}

void RouteJournal::readLeftovers() {
    const int old = openRuntimeFile(folder_, fileName, O_RDONLY);
    if (old < 0)
        return;
    std::string text(longestJournal, '\0');
    const ssize_t count = ::read(old, text.data(), text.size());
    close(old);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    RouteLedger ledger;
    std::string_view rest = text;
    bool isOfThisServer = false;
    for (std::size_t end = 0; (end = rest.find('\n')) != std::string_view::npos;) {
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end + 1);
        if (line.starts_with(watchdogWord::server))
            isOfThisServer = line == serverLine(serverCookie_);
        else if (isOfThisServer)
            ledger.take(line);
    }
    leftovers_ = ledger.streams();
}

/// Rewrites the file with the currently routed streams only.
void RouteJournal::rewrite() {
    if (folder_ < 0)
        return;
    if (file_ >= 0)
        close(std::exchange(file_, -1));
    unlinkat(folder_, newFileName, 0);
    const int fresh = openRuntimeFile(folder_, newFileName, O_WRONLY | O_CREAT | O_EXCL | O_APPEND);
    if (fresh < 0)
        return;
    std::string text = serverLine(serverCookie_) + '\n';
    for (const RoutedStream &stream : ledger_.streams())
        text += stream.encoded() + '\n';
    if (!writeAll(fresh, text) || renameat(folder_, newFileName, folder_, fileName) != 0) {
        close(fresh);
        unlinkat(folder_, newFileName, 0);
        return;
    }
    file_ = fresh;
    linesInFile_ = ledger_.size();
}

void RouteJournal::append(const std::string &line) {
    watchdog_.send(line);
    if (file_ >= 0 && ++linesInFile_ <= 2 * ledger_.size() + spareLines &&
        writeAll(file_, line + '\n'))
        return;
    rewrite();
}

void RouteJournal::routed(const RoutedStream &stream) {
    ledger_.routed(stream);
    append(stream.encoded());
}

void RouteJournal::confirmReleases(std::uint64_t count) {
    for (const RoutedStream &stream : ledger_.confirm(count))
        append(encodedRelease(stream));
}

void RouteJournal::allRestored() {
    if (folder_ >= 0)
        unlinkat(folder_, fileName, 0);
    if (file_ >= 0)
        close(std::exchange(file_, -1));
    watchdog_.finish();
}

void removeEndedJournal() {
    const InstanceLock lock;
    const int folder = lock.isHeld() ? openRuntimeFolder() : -1;
    if (folder < 0)
        return;
    unlinkat(folder, fileName, 0);
    close(folder);
}

} // namespace quorbel
