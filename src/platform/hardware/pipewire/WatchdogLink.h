#pragma once

#include "platform/hardware/routing/RoutedStream.h"

#include <string>
#include <string_view>

namespace quorbel {

/// Keywords of the protocol with the watchdog, besides the lines of routed streams.
namespace watchdogWord {
inline constexpr std::string_view server = "server "; ///< followed by the server's cookie
inline constexpr std::string_view reset = "RESET";    ///< drop all lines so far
inline constexpr std::string_view alive = "ALIVE";
inline constexpr std::string_view resting = "RESTING"; ///< alive, nothing plays: sent less often
inline constexpr std::string_view clean = "CLEAN";     ///< every stream is restored; end
inline constexpr std::string_view took = "TOOK";       ///< from the watchdog: it has restored all
} // namespace watchdogWord

/// The line that names the server's run; the following lines refer to it.
std::string serverLine(std::uint32_t serverCookie);

/// The watchdog process: puts back every routed stream if we end without `finish` or send nothing
/// for 1 s (3 s while nothing plays). `beat` restarts it if it ends before us.
class WatchdogLink {
  public:
    /// Starts the watchdog. If its program is missing, every call does nothing.
    explicit WatchdogLink(std::uint32_t serverCookie);
    /// Makes the watchdog put the routed streams back, unless `finish` was called.
    ~WatchdogLink();
    WatchdogLink(const WatchdogLink &) = delete;
    WatchdogLink &operator=(const WatchdogLink &) = delete;

    void send(std::string_view line);
    /// Reports that we are alive, and whether nothing plays. Restarts the watchdog if it has ended,
    /// and resends everything if a line could not be sent. Returns true if it has put all streams
    /// back since the last call because of a missed report.
    bool beat(const RouteLedger &routed, bool isResting);
    /// Reports that every stream is restored, and waits for the watchdog's end, 0.1 s at most.
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
