#pragma once

#include "SimulatedServer.h"

#include <map>

namespace quorbel::desktop {

/// Links streams to their targets and remembers targets per application, as session managers of the
/// 0.4 and 0.5 series do. Sees the server only through its Line.
class SimulatedSessionManager {
  public:
    SimulatedSessionManager(SimulatedServer &server, std::uint64_t seed)
        : random(seed), server_(server) {}

    Random random;
    bool isNewer = false; ///< as 0.5: also links streams that are older than itself
    bool suspendsOutputs = false;
    std::map<std::string, std::string> remembered; ///< application -> name of its target
    std::string configuredDefault;                 ///< chosen by the user

    void start();
    void stop();
    [[nodiscard]] bool isThere() const { return server_.isManagerThere; }
    void take(const Event &event);
    [[nodiscard]] Micros due() const { return defaultDue_; }
    void followDefault(); ///< called when due
    /// True if the session manager does not link the stream because it is older.
    [[nodiscard]] bool isOld(std::uint64_t serial) const;
    void chooseDefault(const std::string &name);
    [[nodiscard]] Micros startTime() const { return startTime_; }

  private:
    struct Item {
        std::uint32_t id = 0;
        std::uint64_t serial = 0;
        Traits traits;
        int inputs = 0; ///< input ports, except monitors
        std::uint64_t peer = 0;
        bool isOld = false;
    };
    [[nodiscard]] Item *find(std::uint64_t serial);
    void remember(std::uint32_t subject, const std::string &key,
                  const std::optional<MetadataValue> &value);
    void restore(const Item &item);
    void rescan();
    [[nodiscard]] const Item *target(const Item &item) const;
    [[nodiscard]] bool canLink(const Item &item, const Item &target, int hops = 0) const;
    [[nodiscard]] bool isReady(const Item &item) const;
    void scheduleDefault();
    void send(Command command);

    SimulatedServer &server_;
    std::vector<Item> items_;
    Table metadata_;
    std::string default_;
    Micros defaultDue_ = INT64_MAX;
    Micros startTime_ = 0;
    std::size_t snapshot_ = 0;              ///< pending events of nodes present at its start
    std::vector<std::uint64_t> configured_; ///< streams that had ports at its start
};

} // namespace quorbel::desktop
