#pragma once

#include "platform/hardware/pipewire/RoutedStream.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

/// Which streams are routed to a tap at this moment, as told line by line.
class RouteLedger {
  public:
    /// Takes one line; returns false for one that is neither a routing nor a release.
    bool take(std::string_view line);
    [[nodiscard]] std::vector<RoutedStream> streams() const;

  private:
    std::map<std::pair<std::uint32_t, std::uint64_t>, RoutedStream> streams_;
};

/// Writes down every routed stream before it is routed, in two places: a file in the user's runtime
/// folder that the next start reads, and a socket to a watchdog process that acts as soon as we are
/// gone. Without a runtime folder or a watchdog program it does what it can.
class RouteJournal {
  public:
    RouteJournal();
    ~RouteJournal();
    RouteJournal(const RouteJournal &) = delete;
    RouteJournal &operator=(const RouteJournal &) = delete;

    /// What an earlier run left routed: it and its watchdog were both killed.
    [[nodiscard]] const std::vector<RoutedStream> &leftovers() const { return leftovers_; }

    void routed(const RoutedStream &stream);
    void released(const RoutedStream &stream);
    /// Everything is back in its place; the watchdog may go.
    void allRestored();

  private:
    void write(std::string line);

    std::string path_;
    int file_ = -1;
    int watchdogSocket_ = -1;
    int watchdogPid_ = -1;
    std::vector<RoutedStream> leftovers_;
};

/// Ends the watchdog's duty without a restore.
inline constexpr std::string_view watchdogCleanWord = "CLEAN";

} // namespace quorbel
