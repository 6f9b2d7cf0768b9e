#pragma once

#include "platform/hardware/routing/RouteLog.h"

#include <string>
#include <string_view>

namespace quorbel {

/// The words of the socket between us and the watchdog, beside the lines of routed streams.
namespace watchdogWord {
inline constexpr std::string_view server = "server "; ///< followed by the server's cookie
inline constexpr std::string_view reset = "RESET";    ///< forget every line so far
inline constexpr std::string_view alive = "ALIVE";
inline constexpr std::string_view resting = "RESTING"; ///< alive, with nothing playing: seldom said
inline constexpr std::string_view clean = "CLEAN";     ///< everything is restored; end
inline constexpr std::string_view took = "TOOK"; ///< from the watchdog: it has restored everything
} // namespace watchdogWord

/// The line that names the run of the server that the lines after it are about.
std::string serverLine(std::uint32_t serverCookie);

/// The watchdog process: it knows every routed stream and puts them back if we end without a word,
/// or do not answer for a second (for three while nothing plays). It is started again if it ends
/// before us.
class WatchdogLink {
  public:
    /// Starts it. Without the program there is no watchdog, and every call does nothing.
    explicit WatchdogLink(std::uint32_t serverCookie);
    /// Without `finish` before it, the watchdog puts back what is still routed.
    ~WatchdogLink();
    WatchdogLink(const WatchdogLink &) = delete;
    WatchdogLink &operator=(const WatchdogLink &) = delete;

    void send(std::string_view line);
    /// Says that we are alive, and whether the sound rests; starts the watchdog again if it has
    /// ended, and tells it everything again if a line could not be sent. Returns true if it has put
    /// everything back since the last call, because we seemed to be dead.
    bool beat(const RouteLedger &routed, bool isResting);
    /// Everything is restored: ends the watchdog and waits for its end, 0.1 s at most.
    void finish();

  private:
    void start(const RouteLedger &routed);
    void abandon();
    void tellAll(const RouteLedger &routed);

    std::uint32_t serverCookie_;
    int socket_ = -1;
    int pid_ = -1;
    bool isBehind_ = false; ///< a line could not be sent
};

} // namespace quorbel
