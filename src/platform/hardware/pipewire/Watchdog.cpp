#include "platform/hardware/pipewire/Watchdog.h"

#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/RouteJournal.h"
#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/pipewire/WatchdogLink.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace quorbel {
namespace {

constexpr double watchdogAnswerSeconds = 2.0;
constexpr useconds_t retryMicroseconds = 1'000'000;
/// Longest silence of the program, which reports every 0.25 s, or every 1 s while nothing plays.
constexpr double silenceSeconds = 1.0;
constexpr double restingSilenceSeconds = 3.0;
constexpr int lookMilliseconds = 250;
constexpr int restingLookMilliseconds = 1000;

enum class Outcome {
    restored,
    serverGone, ///< with every routed stream
    tryAgain,   ///< the server does not answer
};

Outcome restoreOnce(const std::vector<RoutedStream> &streams, std::uint32_t serverCookie) {
    Status status = statusOK;
    const auto connection = ServerConnection::open(status);
    if (!connection)
        return status == -EHOSTDOWN || status == -ECONNREFUSED || status == -ENOENT
                   ? Outcome::serverGone
                   : Outcome::tryAgain;
    const LoopLock lock(connection->loop());
    ObjectRegistry registry(*connection);
    // Round trips for the objects, for their properties, and for our changes.
    if (connection->roundTrip(watchdogAnswerSeconds) != statusOK ||
        connection->roundTrip(watchdogAnswerSeconds) != statusOK)
        return connection->isLost() ? Outcome::serverGone : Outcome::tryAgain;
    if (connection->serverCookie() != serverCookie)
        return Outcome::serverGone;
    for (const RoutedStream &stream : inOrderOfUndoing(registry.objects(), streams))
        restoreRoute(registry.objects(), registry, stream);
    return connection->roundTrip(watchdogAnswerSeconds) == statusOK ? Outcome::restored
                                                                    : Outcome::tryAgain;
}

void restoreAll(RouteLedger &routed, std::uint32_t serverCookie) {
    const auto streams = routed.streams();
    routed.clear();
    while (!streams.empty() && restoreOnce(streams, serverCookie) == Outcome::tryAgain)
        usleep(retryMicroseconds);
}

/// Reads the program's messages line by line.
class ProgramVoice {
  public:
    explicit ProgramVoice(int input) : input_(input) {}

    enum class Heard { something, nothing, end };

    /// Waits for input, `milliseconds` at most; without limit if negative.
    Heard listen(int milliseconds) {
        pollfd waiting{input_, POLLIN, 0};
        const int ready = poll(&waiting, 1, milliseconds);
        if (ready == 0 || (ready < 0 && errno == EINTR))
            return Heard::nothing;
        std::array<char, 4096> chunk{};
        const ssize_t count = read(input_, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR)
            return Heard::nothing;
        if (count <= 0)
            return Heard::end;
        pending_.append(chunk.data(), static_cast<std::size_t>(count));
        return Heard::something;
    }

    /// Returns the next whole line, if there is one.
    std::optional<std::string> line() {
        const std::size_t end = pending_.find('\n');
        if (end == std::string::npos)
            return std::nullopt;
        std::string result = pending_.substr(0, end);
        pending_.erase(0, end + 1);
        return result;
    }

  private:
    int input_;
    std::string pending_;
};

} // namespace

int runWatchdog(int input) {
    ProgramVoice program(input);
    RouteLedger routed;
    std::uint32_t serverCookie = 0;
    double heardAt = monotonicSeconds();
    bool isResting = false;
    for (;;) {
        const int patience = isResting ? restingLookMilliseconds : lookMilliseconds;
        const auto heard = program.listen(routed.size() > 0 ? patience : -1);
        if (heard == ProgramVoice::Heard::end)
            break;
        const double now = monotonicSeconds();
        if (heard == ProgramVoice::Heard::something)
            heardAt = now;
        while (const auto line = program.line()) {
            if (*line == watchdogWord::clean)
                return 0;
            if (*line == watchdogWord::reset)
                routed.clear();
            else if (*line == watchdogWord::alive || *line == watchdogWord::resting)
                isResting = *line == watchdogWord::resting;
            else if (line->starts_with(watchdogWord::server))
                std::from_chars(line->data() + watchdogWord::server.size(),
                                line->data() + line->size(), serverCookie);
            else
                routed.take(*line);
        }
        const double limit = isResting ? restingSilenceSeconds : silenceSeconds;
        if (now - heardAt > limit && routed.size() > 0) {
            restoreAll(routed, serverCookie);
            const std::string word = std::string(watchdogWord::took) + '\n';
            if (write(input, word.data(), word.size()) < 0)
                break;
        }
    }
    restoreAll(routed, serverCookie);
    removeEndedJournal();
    return 0;
}

} // namespace quorbel
