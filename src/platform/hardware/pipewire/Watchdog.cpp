#include "platform/hardware/pipewire/Watchdog.h"

#include "platform/hardware/pipewire/ObjectRegistry.h"
#include "platform/hardware/pipewire/RouteJournal.h"
#include "platform/hardware/pipewire/ServerConnection.h"

#include <array>
#include <cerrno>
#include <string>
#include <unistd.h>

namespace quorbel {
namespace {

constexpr double answerSeconds = 2.0;

bool restoreAll(const std::vector<RoutedStream> &streams) {
    Status status = statusOK;
    const auto connection = ServerConnection::open(status);
    if (!connection)
        return false;
    const LoopLock lock(connection->loop());
    ObjectRegistry registry(*connection);
    // Objects first, then what is known about them, then our changes.
    if (connection->roundTrip(answerSeconds) != statusOK ||
        connection->roundTrip(answerSeconds) != statusOK)
        return false;
    for (const RoutedStream &stream : streams)
        restoreRoute(registry, stream);
    return connection->roundTrip(answerSeconds) == statusOK;
}

} // namespace

int runWatchdog(int input) {
    RouteLedger ledger;
    std::string pending;
    std::array<char, 4096> chunk{};
    for (;;) {
        const ssize_t count = read(input, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        pending.append(chunk.data(), static_cast<std::size_t>(count));
        std::size_t lineEnd = 0;
        while ((lineEnd = pending.find('\n')) != std::string::npos) {
            const std::string line = pending.substr(0, lineEnd);
            pending.erase(0, lineEnd + 1);
            if (line == watchdogCleanWord)
                return 0;
            ledger.take(line);
        }
    }
    const auto streams = ledger.streams();
    return streams.empty() || restoreAll(streams) ? 0 : 1;
}

} // namespace quorbel
