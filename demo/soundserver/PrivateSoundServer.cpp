#include "soundserver/PrivateSoundServer.h"

#include "soundserver/ChannelLayout.h"
#include "soundserver/Waiting.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorbel::soundserver {
namespace {

namespace fs = std::filesystem;

/// Short, because a socket's path is limited to 108 characters.
fs::path makeTemporaryFolder() {
    std::string path = (fs::temp_directory_path() / "ostrafine-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr)
        throw ServerError("no temporary folder " + path + ": " + std::strerror(errno));
    return path;
}

void writeFile(const fs::path &path, const std::string &text) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path);
    file << text;
    if (!file.flush())
        throw ServerError("cannot write " + path.string());
}

std::string readFile(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of(" \n\t") + 1);
    return text;
}

bool isSocket(const fs::path &path) {
    std::error_code ignored;
    return fs::is_socket(path, ignored);
}

// The bus starts only services that a test has added, none of the machine's.
constexpr const char *busConfiguration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={}</listen>
  <servicedir>{}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

/// The session manager leaves this machine's own sound cards, cameras and Bluetooth alone: in Lua
/// for WirePlumber 0.4, as a profile for 0.5 and later. (Bluetooth would also need a login
/// service.)
void allowVirtualDevicesOnly(const fs::path &configuration) {
    writeFile(configuration / "main.lua.d/51-virtual-devices-only.lua",
              "alsa_monitor.enabled = false\n"
              "v4l2_monitor.enabled = false\n"
              "libcamera_monitor.enabled = false\n");
    writeFile(configuration / "bluetooth.lua.d/51-virtual-devices-only.lua",
              "bluez_monitor.enabled = false\n");
    writeFile(configuration / "wireplumber.conf.d/virtual-devices-only.conf",
              "wireplumber.profiles = { main = { hardware.audio = disabled, "
              "hardware.bluetooth = disabled, hardware.video-capture = disabled } }\n");
}

} // namespace

PrivateSoundServer::PrivateSoundServer(const Options &options)
    : options_(options), folder_(makeTemporaryFolder()) {
    try {
        for (const auto &[variable, name] : {std::pair{"XDG_RUNTIME_DIR", "run"},
                                             {"XDG_CONFIG_HOME", "config"},
                                             {"XDG_STATE_HOME", "state"},
                                             {"XDG_DATA_HOME", "data"},
                                             {"XDG_CACHE_HOME", "cache"},
                                             {"HOME", "home"}}) {
            fs::create_directory(folder_ / name);
            fs::permissions(folder_ / name, fs::perms::owner_all);
            environment_[variable] = (folder_ / name).string();
        }
        // Variables that point to the user's server must not reach this session's programs.
        for (const char *variable : {"PIPEWIRE_REMOTE", "PIPEWIRE_RUNTIME_DIR", "PULSE_SERVER",
                                     "PULSE_RUNTIME_PATH", "DISPLAY", "WAYLAND_DISPLAY"})
            unsetenv(variable);
        const fs::path bus = folder_ / "run" / "bus";
        environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + bus.string();
        fs::create_directory(servicesFolder());
        writeFile(folder_ / "bus.conf",
                  fmt::format(busConfiguration, bus.string(), servicesFolder().string()));
        writeFile(folder_ / "config/pipewire/pipewire.conf.d/rate.conf",
                  fmt::format("context.properties = {{ default.clock.rate = {0} "
                              "default.clock.allowed-rates = [ {0} ] }}\n",
                              options.sampleRate));
        allowVirtualDevicesOnly(folder_ / "config/wireplumber");
        startBus();
        startServer();
    } catch (...) {
        end();
        throw;
    }
}

PrivateSoundServer::~PrivateSoundServer() { end(); }

void PrivateSoundServer::end() noexcept {
    pulse_.reset();
    sessionManager_.reset();
    pipewire_.reset();
    bus_.reset();
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void PrivateSoundServer::startBus() {
    bus_ = start({"dbus-daemon", "--nofork", "--config-file=" + (folder_ / "bus.conf").string()});
    waitForSocket(folder_ / "run/bus", *bus_);
}

void PrivateSoundServer::startServer() {
    pipewire_ = start({"pipewire"});
    waitForSocket(socket(), *pipewire_);
    sessionManager_ = start({"wireplumber"});
    pulse_ = start({"pipewire-pulse"});
    waitForSocket(folder_ / "run/pulse/native", *pulse_);
    waitForSessionManager();
    addDevices();
}

void PrivateSoundServer::waitForSessionManager() const {
    // The session manager stores the defaults; a desktop's requests to change them fail until it is
    // ready.
    waitFor("the session manager", 10.0, [&] {
        if (!sessionManager_->running()) {
            throw ServerError("wireplumber ended: " + sessionManager_->errors());
        }
        return state().hasSessionManager;
    });
}

void PrivateSoundServer::addDevices() {
    for (const Device &device : options_.devices)
        addDevice(device);
    if (!options_.devices.empty())
        setDefaultDevice(options_.devices.front().name);
}

void PrivateSoundServer::waitForSocket(const fs::path &path, ChildProcess &owner) const {
    waitFor(path.string(), 10.0, [&] {
        if (!owner.running())
            throw ServerError(owner.arguments()[0] + " ended: " + owner.errors());
        return isSocket(path);
    });
}

fs::path PrivateSoundServer::servicesFolder() const { return folder_ / "services"; }

fs::path PrivateSoundServer::socket() const { return folder_ / "run/pipewire-0"; }

std::unique_ptr<ChildProcess> PrivateSoundServer::start(std::vector<std::string> arguments) const {
    return std::make_unique<ChildProcess>(std::move(arguments), environment_);
}

std::string PrivateSoundServer::run(std::vector<std::string> arguments) const {
    return runProgram(std::move(arguments), environment_);
}

std::vector<pid_t> PrivateSoundServer::otherProcesses() const {
    const std::string mark = "XDG_RUNTIME_DIR=" + environment_.at("XDG_RUNTIME_DIR");
    std::vector<pid_t> ours;
    for (const auto *process : {bus_.get(), pipewire_.get(), sessionManager_.get(), pulse_.get()})
        if (process != nullptr)
            ours.push_back(process->pid());
    std::vector<pid_t> others;
    std::error_code ignored;
    for (const auto &entry : fs::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename();
        pid_t pid = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (error != std::errc() || *end != '\0' || std::ranges::find(ours, pid) != ours.end())
            continue;
        if (readFile(entry.path() / "environ").find(mark) != std::string::npos)
            others.push_back(pid);
    }
    return others;
}

void PrivateSoundServer::addDevice(const Device &device) {
    std::string names;
    std::string pulseNames;
    for (const Channel &channel : channelLayout(device.channels)) {
        names += fmt::format(" {}", channel.name);
        pulseNames += fmt::format("{}{}", pulseNames.empty() ? "" : ",", channel.pulseName);
    }
    if (options_.devicesOutlastSessionManager) {
        // A session manager that was killed before it stored the user's choice takes the first
        // device for the default.
        const bool isFirst = device.name == options_.devices.front().name;
        run({"pw-cli", "create-node", "adapter",
             fmt::format("{{ factory.name=support.null-audio-sink media.class=Audio/Sink "
                         "object.linger=true node.name={} node.description={} audio.rate={} "
                         "audio.position=[{} ] priority.session={} }}",
                         device.name, device.description, options_.sampleRate, names,
                         isFirst ? 1000 : 900)});
    } else {
        moduleOfDevice_[device.name] =
            trimmed(run({"pactl", "load-module", "module-null-sink", "sink_name=" + device.name,
                         fmt::format("rate={}", options_.sampleRate),
                         fmt::format("channels={}", device.channels), "channel_map=" + pulseNames,
                         "sink_properties=device.description=" + device.description}));
    }
    waitFor("the device " + device.name, 10.0, [&] {
        return state().node(device.name) != nullptr &&
               desktopList("sinks").find("\t" + device.name + "\t") != std::string::npos;
    });
}

void PrivateSoundServer::removeDevice(const std::string &name) {
    if (const auto module = moduleOfDevice_.find(name); module != moduleOfDevice_.end())
        run({"pactl", "unload-module", module->second});
    else
        destroyNode(name);
    waitFor(name + " is gone", 10.0, [&] { return state().node(name) == nullptr; });
}

void PrivateSoundServer::setDefaultDevice(const std::string &name) const {
    waitFor(name + " is the default", 10.0, [&] {
        // The PulseAudio interface refuses until it knows the session manager.
        start({"pactl", "set-default-sink", name})->exitStatusWithin(5.0);
        return comesTrue(0.5, [&] { return state().defaultName("default.audio.sink") == name; });
    });
}

void PrivateSoundServer::moveApplication(const std::string &nodeName,
                                         const std::string &device) const {
    // Waits until the stream is heard: the session manager stores a new stream's target shortly
    // after linking it, and would overwrite an earlier move.
    waitFor(nodeName + " plays", 5.0, [&] { return !state().targetsOf(nodeName).empty(); });
    const Node application = *state().node(nodeName);
    comesTrue(0.5, [&] { return state().metadata.contains({application.id, "target.node"}); });
    // Repeats the request: the PulseAudio server answers before it has passed the request on, and
    // drops it if the requesting program ends too soon.
    const std::string serial = state().node(device)->property("object.serial");
    waitFor(nodeName + " is moved to " + device, 5.0, [&] {
        run({"pactl", "move-sink-input", application.property("object.serial"), device});
        return comesTrue(0.3, [&] {
            const auto metadata = state().metadata;
            const auto target = metadata.find({application.id, "target.object"});
            return target != metadata.end() &&
                   (target->second == serial || target->second == device);
        });
    });
}

void PrivateSoundServer::setRoute(const std::string &nodeName, const std::string &key,
                                  const std::string &value, const std::string &type) const {
    run({"pw-metadata", std::to_string(state().node(nodeName)->id), key, value, type});
}

void PrivateSoundServer::destroyNode(const std::string &name) const {
    const Node node = *state().node(name);
    run({"pw-cli", "destroy", std::to_string(node.id)});
    waitFor(name + " is destroyed", 5.0, [&] {
        const ServerState now = state();
        const Node *same = now.node(node.id); // maybe a new node: ids are reused
        return same == nullptr || same->property("object.serial") != node.property("object.serial");
    });
}

void PrivateSoundServer::forceQuantum(int frames) const {
    run({"pw-metadata", "-n", "settings", "0", "clock.force-quantum", std::to_string(frames)});
}

void PrivateSoundServer::forceSampleRate(int rate) const {
    run({"pw-metadata", "-n", "settings", "0", "clock.force-rate", std::to_string(rate)});
}

ServerState PrivateSoundServer::state() const {
    for (int attempt = 0; attempt < 4; ++attempt) {
        const auto dump = start({"pw-dump"});
        const auto status = dump->exitStatusWithin(2.5);
        if (status == 0)
            return ServerState::parse(dump->output());
        if (status)
            throw ServerError("pw-dump failed: " + dump->errors());
        // Server 1.4.2 sometimes never answers a client that connects while no session manager
        // runs.
    }
    throw ServerError("the server does not answer");
}

StoredStreams PrivateSoundServer::storedStreams() const {
    const fs::path folder = folder_ / "state/wireplumber";
    StoredStreams stored = parseStoredStreams(readFile(folder / "stream-properties")); // 0.5
    stored.merge(parseStoredStreams(readFile(folder / "restore-stream")));             // 0.4
    return stored;
}

std::string PrivateSoundServer::desktopList(const std::string &kind) const {
    return run({"pactl", "list", "short", kind});
}

void PrivateSoundServer::crash() {
    pulse_.reset();
    sessionManager_.reset();
    pipewire_.reset();
}

void PrivateSoundServer::pause() const { pipewire_->signal(SIGSTOP); }

void PrivateSoundServer::resume() const { pipewire_->signal(SIGCONT); }

void PrivateSoundServer::pauseSessionManager() const { sessionManager_->signal(SIGSTOP); }

void PrivateSoundServer::resumeSessionManager() const { sessionManager_->signal(SIGCONT); }

void PrivateSoundServer::holdUp(double seconds) const {
    pause();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    resume();
}

void PrivateSoundServer::restart() {
    moduleOfDevice_.clear();
    fs::remove(socket()); // or it would be taken for the new server's
    fs::remove(folder_ / "run/pulse/native");
    startServer();
}

void PrivateSoundServer::restartSessionManager() {
    sessionManager_.reset();
    waitFor("the session manager has left", 5.0, [&] {
        // Accepts no answer as well: see `state`.
        const auto dump = start({"pw-dump"});
        return dump->exitStatusWithin(1.0) != 0 ||
               !ServerState::parse(dump->output()).hasSessionManager;
    });
    if (!options_.devicesOutlastSessionManager)
        for (const Device &device : options_.devices)
            removeDevice(device.name);
    sessionManager_ = start({"wireplumber"});
    waitForSessionManager();
    if (!options_.devicesOutlastSessionManager)
        addDevices();
}

} // namespace quorbel::soundserver
