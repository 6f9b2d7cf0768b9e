#pragma once

#include "SimulatedServer.h"
#include "platform/hardware/routing/OwnPair.h"
#include "platform/hardware/routing/PairSupervisor.h"
#include "platform/hardware/routing/RoutedStream.h"
#include "platform/hardware/routing/StreamRouter.h"

#include <memory>
#include <string>
#include <vector>

namespace quorbel::desktop {

enum class Published { off, starting, running, error };

/// Our program as seen by the server: its streams, router and supervisor, its journal (read at the
/// next start) and its watchdog.
class SimulatedClient final : public ServerCommands {
  public:
    explicit SimulatedClient(SimulatedServer &server) : server_(server) {}

    std::string chosenDevice; ///< by name; empty for the default

    void start();
    void stop();
    /// Ends at once; only the first `kept` commands in transit still arrive.
    void die(std::size_t kept, bool withWatchdog);
    void serverDied();
    /// The current streams stop running cycles.
    void hang();
    [[nodiscard]] bool hangs() const { return hangs_; }
    /// Adds or removes the rule that excludes a program from processing.
    void toggleRule(const std::string &program);
    [[nodiscard]] bool leavesAlone(const std::string &program) const;
    void take(const Event &event);
    /// Handles the deadlines that have expired.
    void tick();
    [[nodiscard]] Micros due() const;
    /// Starts the watchdog, after the dead client's last command has arrived.
    void watch();
    void watchdogFinished();
    /// True until the next start if the watchdog died too.
    [[nodiscard]] bool wasWatchdogLost() const { return wasWatchdogLost_; }

    /// True if a deadline of a stream is near, or the pair is about to be replaced.
    [[nodiscard]] bool hasSomethingDue() const {
        return isAlive_ &&
               (router_->nextDeadline() - seconds() < 0.3 || hangs_ || comebackAt_ != INT64_MAX);
    }
    [[nodiscard]] bool isAlive() const { return isAlive_; }
    [[nodiscard]] bool wantsOn() const { return wantsOn_; }
    [[nodiscard]] Published published() const { return published_; }
    [[nodiscard]] const ServerObjects &objects() const { return *objects_; }
    [[nodiscard]] const RouteLedger &ledger() const { return ledger_; }
    [[nodiscard]] const StreamRouter *router() const { return router_.get(); }
    [[nodiscard]] const RoutingEnds &ends() const { return ends_; }
    /// True if our last write sends the stream to the tap.
    [[nodiscard]] bool isSentToTap(std::uint32_t streamID) const;
    [[nodiscard]] bool isStopping() const { return stopping_ != Stopping::no; }

    void setMetadata(std::uint32_t subject, const char *key, const MetadataValue &value) override {
        write(subject, key, value);
    }
    void deleteMetadata(std::uint32_t subject, const char *key) override {
        write(subject, key, std::nullopt);
    }
    void readMetadata() override;
    [[nodiscard]] bool isDeaf() const override { return server_.isDeaf; }
    OwnLink createLink(const LinkRequest &request) override;
    void destroyLink(OwnLink link) override;
    void removeLink(std::uint32_t linkID) override;
    [[nodiscard]] double seconds() const override {
        return static_cast<double>(server_.now) * 1e-6;
    }

  private:
    enum class Stopping { no, binding, restoring };

    void connect();
    [[nodiscard]] RouteLedger written() const;
    void reset();
    void send(Command command);
    void write(std::uint32_t subject, const char *key, const std::optional<MetadataValue> &value);
    void createPair();
    void destroyPair();
    void look();
    void stopNow();
    void finishStop();
    void bindMetadata();
    void tellDifferences();
    [[nodiscard]] OwnPair pair() const;
    [[nodiscard]] RoutingEnds findEnds() const { return pair().ends(*objects_); }

    SimulatedServer &server_;
    std::unique_ptr<ServerObjects> objects_ = std::make_unique<ServerObjects>();
    std::unique_ptr<StreamRouter> router_;
    ProgramRules rules_;
    PairSupervisor supervisor_;
    PairFacts facts_;
    bool areFactsOld_ = true;
    RouteLedger ledger_;
    std::vector<RoutedStream> leftovers_;
    bool isAlive_ = false, wantsOn_ = false, hasPair_ = false, isDeviceTap_ = false;
    bool hadManager_ = false, isWatchdogMortal_ = false;
    Published published_ = Published::off;
    Stopping stopping_ = Stopping::no;
    Micros stopDeadline_ = INT64_MAX, comebackAt_ = INT64_MAX, reconnectAt_ = INT64_MAX,
           watchAt_ = INT64_MAX, nextLook_ = INT64_MAX;
    std::uint64_t binding_ = 0, awaitedReleases_ = 0;
    Table bound_; ///< values of the current binding
    RoutingEnds ends_;
    int nextHandle_ = 1, tapHandle_ = 0, outHandle_ = 0;
    std::uint64_t tapSerial_ = 0, outSerial_ = 0;
    std::uint32_t tapID_ = 0, outID_ = 0;
    bool tapRuns_ = false, outRuns_ = false, hangs_ = false;
    Micros hungAt_ = 0;
    OwnLink nextLink_ = 1;
    std::vector<OwnLink> outputLinks_;
    bool isWatching_ = false, wasWatchdogLost_ = false;
    std::map<std::uint32_t, std::string> ownTargets_; ///< by stream, as last written
    /// Writes since the current binding began; a missing value is a deletion.
    std::map<Table::key_type, std::optional<MetadataValue>> ownWrites_;
};

} // namespace quorbel::desktop
