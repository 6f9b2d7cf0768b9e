#pragma once

#include "soundserver/ChildProcess.h"
#include "soundserver/ServerState.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quorbel::soundserver {

/// A complete private sound server: a session bus, PipeWire, WirePlumber and the PulseAudio
/// interface, with virtual output devices, in a temporary folder that is removed with the object.
/// Nothing of the user's session is read or changed.
class PrivateSoundServer {
  public:
    struct Device {
        std::string name;
        std::string description;
        int channels = 2; ///< 1, 2, 4, 6 or 8
    };
    struct Options {
        int sampleRate = 48000; ///< the only rate the graph runs at
        /// The first one is the user's default.
        std::vector<Device> devices = {{"speakers", "Speakers"}, {"hdmi", "HDMI"}};
        /// The devices stay while the session manager is restarted, as sound cards do.
        bool devicesOutlastSessionManager = false;
    };

    /// Returns once applications can play. Throws `ServerError` otherwise.
    PrivateSoundServer() : PrivateSoundServer(Options{}) {}
    explicit PrivateSoundServer(const Options &options);
    ~PrivateSoundServer();
    PrivateSoundServer(const PrivateSoundServer &) = delete;
    PrivateSoundServer &operator=(const PrivateSoundServer &) = delete;

    // Programs of the session
    [[nodiscard]] std::unique_ptr<ChildProcess> start(std::vector<std::string> arguments) const;
    std::string run(std::vector<std::string> arguments) const;
    [[nodiscard]] const Environment &environment() const { return environment_; }

    /// Every living process of this session except the server's own.
    [[nodiscard]] std::vector<pid_t> otherProcesses() const;

    /// The folder of the program's own settings; it may not exist.
    [[nodiscard]] std::filesystem::path settingsFolder() const {
        return std::filesystem::path(environment().at("XDG_CONFIG_HOME")) / "Quorbel";
    }

    // Actions of a desktop's settings
    void addDevice(const Device &device);
    void removeDevice(const std::string &name);
    void setDefaultDevice(const std::string &name) const;
    /// Moves a playing application, as the user does in a mixer window.
    void moveApplication(const std::string &nodeName, const std::string &device) const;
    /// 0 lets the server choose.
    void forceQuantum(int frames) const;
    /// 0 lets the server choose.
    void forceSampleRate(int rate) const;

    /// Sets a value of a playing application in the session manager's metadata, as programs that
    /// move streams do.
    void setRoute(const std::string &nodeName, const std::string &key, const std::string &value,
                  const std::string &type = "Spa:Id") const;
    /// Destroys a program's node behind its back.
    void destroyNode(const std::string &name) const;

    // State
    [[nodiscard]] ServerState state() const;
    /// The session manager's stored values for every application; empty before its first write. It
    /// writes after a delay of a second, so they are complete once `state` has been constant for a
    /// second.
    [[nodiscard]] StoredStreams storedStreams() const;
    /// A list as shown by desktops: "sinks", "sources", "sink-inputs" or "source-outputs".
    [[nodiscard]] std::string desktopList(const std::string &kind) const;

    /// The folder of the session, for files that are removed with it.
    [[nodiscard]] const std::filesystem::path &folder() const { return folder_; }
    [[nodiscard]] std::filesystem::path socket() const;
    /// Descriptions of the programs that the session bus may start; empty at first.
    [[nodiscard]] std::filesystem::path servicesFolder() const;

    /// Kills the server as a crash would; the session's programs keep running.
    void crash();

    /// Stops the server until `resume`.
    void pause() const;
    void resume() const;

    /// As `pause`, for the session manager. Clients that bind its metadata meanwhile wait for it.
    void pauseSessionManager() const;
    void resumeSessionManager() const;

    /// Stops the server for `seconds`, as a busy machine would.
    void holdUp(double seconds) const;

    /// Starts the server again after a crash, as the user's service manager would. Earlier
    /// connections are lost.
    void restart();

    /// Ends the session manager alone and starts it again. Version 0.4 does not link virtual
    /// devices that are older than itself, so they are replaced, unless the options keep them.
    void restartSessionManager();

  private:
    void startBus();
    void startServer();
    void end() noexcept;
    void waitForSessionManager() const;
    void addDevices();
    void waitForSocket(const std::filesystem::path &path, ChildProcess &owner) const;

    Options options_;
    std::filesystem::path folder_;
    Environment environment_;
    std::map<std::string, std::string> moduleOfDevice_; ///< of those made by pactl
    // In the order of their start; destroyed in reverse.
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> pipewire_;
    std::unique_ptr<ChildProcess> sessionManager_;
    std::unique_ptr<ChildProcess> pulse_;
};

} // namespace quorbel::soundserver
