#pragma once

#include "SimulatedClient.h"
#include "SimulatedServer.h"
#include "SimulatedSessionManager.h"
#include "Storm.h"

#include <array>
#include <string>
#include <vector>

namespace quorbel::desktop {

/// Computer with devices, applications, a session manager and, in one of two worlds, our program.
/// Depends only on the storm's seed and one clock.
class Desktop {
  public:
    Desktop(const Storm &storm, bool hasUs);

    enum class Kind : std::uint8_t { player, loopback, virtualSink, split, meter };
    struct Application {
        Kind kind = Kind::player;
        std::vector<NodeTraits> halves;
        std::vector<std::uint64_t> serials;
        bool isAlive = false;
        bool wasMovedByLinks = false;
        bool hasObject = false;      ///< "target.object" may be set without us
        bool isPinUncertain = false; ///< its device was absent, or its values were inherited
        Micros started = 0;
        Micros movedAt = -1;
        Micros silentSince = -1;
    };

    SimulatedServer server;
    SimulatedSessionManager manager;
    SimulatedClient client;
    std::array<Application, applicationCount> applications;
    std::array<int, deviceCount> channels{};
    std::array<bool, deviceCount> isPlugged{};
    bool isServerUp = true;

    /// Runs until `time` or the first violation.
    void runUntil(Micros time);
    void carryOut(const StormEvent &event);
    /// Lets an absent server or session manager return.
    void calm();
    /// Marks the pins that are unknown to us at start: no stream of their program has them as its
    /// target.
    void noteUnknownPins();
    [[nodiscard]] const std::string &violation() const { return violation_; }
    void fail(std::string text);

    /// True if the pin of one of the program's streams is uncertain.
    [[nodiscard]] bool isPinUncertain(const std::string &program) const;
    [[nodiscard]] const Node *playback(const Application &application) const;
    [[nodiscard]] bool hasReadyDevice() const;

  private:
    struct Timer {
        enum class Kind : std::uint8_t { port, managerReturns, serverReturns, application, plug };
        Kind kind{};
        int slot = 0;
        Micros due = 0;
        Micros interval = 0;
    };
    void fire(const Timer &timer);
    void startNodes(Application &application);
    void stopNodes(Application &application);
    void plugNode(int slot, Micros interval);
    void afterStep();
    void beginStep();
    void noteGoodTimes();
    void noteSilence();
    void lookForSilence();
    void lookForFeedback();
    void lookAtView();
    void noteUncertainPins();
    [[nodiscard]] bool hasWay(const Application &application) const;
    [[nodiscard]] bool sharesName(const Application &application) const;
    [[nodiscard]] bool canUserMove(const Application &application) const;

    bool hasUs_;
    std::uint64_t seed_;
    bool ownsDevices_; ///< true if the session manager owns the devices
    int duplexDevice_ = -1;
    std::vector<Timer> timers_;
    Micros killedAt_ = 0; ///< last kill of our program, in either world
    Micros stoppedAt_ = -2'000'000;
    Micros goodSince_ = 0, stalledUntil_ = 0, feedbackSince_ = -1;
    bool isDeviceReady_ = false;
    bool clientActed_ = false;
    int stepsAtOnce_ = 0;
    std::string violation_;
};

} // namespace quorbel::desktop
