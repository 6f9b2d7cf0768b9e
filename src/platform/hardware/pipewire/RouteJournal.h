#pragma once

#include "platform/hardware/pipewire/WatchdogLink.h"
#include "platform/hardware/routing/RoutedStream.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quorbel {

/// Records every stream before it is routed, in two places: a file in our runtime folder, which the
/// next start reads, and the watchdog, which acts as soon as we are gone. Uses only one place if
/// the runtime folder or the watchdog program is missing.
class RouteJournal final : public RouteLog {
  public:
    /// `serverCookie` identifies one run of the sound server; serials restart with each run.
    explicit RouteJournal(std::uint32_t serverCookie);
    ~RouteJournal() override;
    RouteJournal(const RouteJournal &) = delete;
    RouteJournal &operator=(const RouteJournal &) = delete;

    /// Streams that an earlier run left routed on this server, because it and its watchdog were
    /// killed.
    [[nodiscard]] const std::vector<RoutedStream> &leftovers() const { return leftovers_; }

    void routed(const RoutedStream &stream) override;
    /// Takes effect with `confirmReleases`.
    void released(const RoutedStream &stream) override { ledger_.released(stream); }
    [[nodiscard]] std::uint64_t releases() const { return ledger_.releases(); }
    /// As `RouteLedger::confirm`.
    void confirmReleases(std::uint64_t count);
    [[nodiscard]] bool hasUnconfirmed() const { return ledger_.hasUnconfirmed(); }
    [[nodiscard]] bool isEmpty() const { return ledger_.size() == 0; }
    /// As `WatchdogLink::beat`. Call it every `beatSeconds` while streams are routed, or every
    /// `restingBeatSeconds` while nothing plays.
    bool beat(bool isResting) { return watchdog_.beat(ledger_, isResting); }
    static constexpr double beatSeconds = 0.25;
    static constexpr double restingBeatSeconds = 1.0;
    /// Removes the file and ends the watchdog: every stream is restored.
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
};

/// Removes the journal of a program that has ended, unless another one runs and owns it.
void removeEndedJournal();

} // namespace quorbel
