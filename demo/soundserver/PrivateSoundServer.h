#pragma once

#include "soundserver/ChildProcess.h"
#include "soundserver/ServerState.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quorbel::soundserver {

/// A complete sound server that nobody else knows of: a session bus, PipeWire, WirePlumber and the
/// PulseAudio interface, with virtual output devices, in a temporary folder that goes with the
/// object. Nothing of the user's own session is read or changed.
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

    /// Returns when applications can play. Throws `ServerError` if that does not come about.
    PrivateSoundServer() : PrivateSoundServer(Options{}) {}
    explicit PrivateSoundServer(const Options &options);
    ~PrivateSoundServer();
    PrivateSoundServer(const PrivateSoundServer &) = delete;
    PrivateSoundServer &operator=(const PrivateSoundServer &) = delete;

    // Programs of the session
    [[nodiscard]] std::unique_ptr<ChildProcess> start(std::vector<std::string> arguments) const;
    std::string run(std::vector<std::string> arguments) const;
    [[nodiscard]] const Environment &environment() const { return environment_; }

    /// Every living process that was started in this session, by us or by others, except the
    /// server's own.
    [[nodiscard]] std::vector<pid_t> otherProcesses() const;

    // What a desktop's settings do
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

    // What it looks like
    [[nodiscard]] ServerState state() const;
    /// What the session manager has stored for every application; complete when `state` has been
    /// the same for a second, which is how long it waits with writing. Empty before its first
    /// writing.
    [[nodiscard]] StoredStreams storedStreams() const;
    /// A list as desktops show it: "sinks", "sources", "sink-inputs" or "source-outputs".
    [[nodiscard]] std::string desktopList(const std::string &kind) const;

    /// The folder of the session, for files that should go with it.
    [[nodiscard]] const std::filesystem::path &folder() const { return folder_; }
    [[nodiscard]] std::filesystem::path socket() const;

    /// Ends the server as a crash would, with the session's programs left alone.
    void crash();

    /// Stops the server until `resume`.
    void pause() const;
    void resume() const;

    /// The same for the session manager. Clients that bind its metadata meanwhile wait for it.
    void pauseSessionManager() const;
    void resumeSessionManager() const;

    /// The machine does not get round to the server for so long.
    void holdUp(double seconds) const;

    /// Starts it again after a crash, as the user's service manager would. What was connected
    /// before is not any more.
    void restart();

    /// The session manager alone ends and is started again. Version 0.4 leaves virtual devices that
    /// were there before without links, with or without anybody processing: unless the options say
    /// that they stay, they are replaced.
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
    std::map<std::string, std::string> moduleOfDevice_; ///< except for devices that outlast
    // In the order of their start; destroyed in reverse.
    std::unique_ptr<ChildProcess> bus_;
    std::unique_ptr<ChildProcess> pipewire_;
    std::unique_ptr<ChildProcess> sessionManager_;
    std::unique_ptr<ChildProcess> pulse_;
};

} // namespace quorbel::soundserver
