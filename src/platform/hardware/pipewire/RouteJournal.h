#pragma once

#include "platform/hardware/pipewire/WatchdogLink.h"
#include "platform/hardware/routing/RouteLog.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quorbel {

/// Writes down every routed stream before it is routed, in two places: a file in our runtime folder
/// that the next start reads, and the watchdog, which acts as soon as we are gone. Without a
/// runtime folder or a watchdog program it does what it can.
class RouteJournal final : public RouteLog {
  public:
    /// `serverCookie` tells one run of the sound server from another, whose serials begin again.
    explicit RouteJournal(std::uint32_t serverCookie);
    ~RouteJournal() override;
    RouteJournal(const RouteJournal &) = delete;
    RouteJournal &operator=(const RouteJournal &) = delete;

    /// What an earlier run left routed on this server: it and its watchdog were both killed.
    [[nodiscard]] const std::vector<RoutedStream> &leftovers() const { return leftovers_; }

    void routed(const RoutedStream &stream) override;
    /// Holds once `confirmReleases` has been called: until then the server may not have done it.
    void released(const RoutedStream &stream) override;
    /// How many releases there have been so far.
    [[nodiscard]] std::uint64_t releases() const { return releases_; }
    /// The server has carried out everything that the first `count` releases are about.
    void confirmReleases(std::uint64_t count);
    [[nodiscard]] bool hasUnconfirmed() const { return !unconfirmed_.empty(); }
    [[nodiscard]] bool isEmpty() const { return ledger_.size() == 0; }
    /// As `WatchdogLink::beat`: to be called every `beatSeconds` while streams are routed, or every
    /// `restingBeatSeconds` while nothing plays.
    bool beat(bool isResting) { return watchdog_.beat(ledger_, isResting); }
    static constexpr double beatSeconds = 0.25;
    static constexpr double restingBeatSeconds = 1.0;
    /// Everything is back in its place; the watchdog may go.
    void allRestored();

  private:
    void readLeftovers();
    void rewrite();
    void append(const std::string &line);

    std::uint32_t serverCookie_;
    WatchdogLink watchdog_;
    RouteLedger ledger_;
    int folder_ = -1;
    int file_ = -1;
    std::size_t linesInFile_ = 0;
    std::vector<RoutedStream> leftovers_;
    std::uint64_t releases_ = 0;
    std::vector<std::pair<std::uint64_t, RoutedStream>> unconfirmed_; ///< with their numbers
};

/// Removes the journal of a program that has ended, unless another one runs by now and owns it.
void removeEndedJournal();

} // namespace quorbel
