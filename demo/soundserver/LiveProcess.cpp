#include "soundserver/LiveProcess.h"

#include "soundserver/Levels.h"
#include "soundserver/ProcessUsage.h"
#include "soundserver/Waiting.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quorbel::soundserver {
namespace {

using OrderedJson = nlohmann::ordered_json;

std::string writeSettings(const PrivateSoundServer &server, const LiveSettings &settings) {
    std::string path = (server.folder() / "settings.json").string();
    std::ofstream(path) << settings.json();
    return path;
}

} // namespace

LiveSettings LiveSettings::flat(double globalGainDB) {
    LiveSettings settings;
    for (const double hz : octaveCentresHz)
        settings.bands.push_back({hz, 0.0, 1.0, "parametric"});
    settings.eqGlobalGainDB = globalGainDB;
    return settings;
}

std::string LiveSettings::json() const {
    OrderedJson file;
    file["bands"] = OrderedJson::array();
    for (const Band &band : bands) {
        file["bands"].push_back({{"frequency", band.frequency},
                                 {"gainDB", band.gainDB},
                                 {"q", band.q},
                                 {"filterType", band.filterType}});
    }
    file["spatial"] = {{"widenerEnabled", false},     {"widthPercent", 100.0},
                       {"xtcEnabled", false},         {"xtcAmount", 50.0},
                       {"xtcNotchFrequency", 2000.0}, {"reverbEnabled", reverbMix > 0.0},
                       {"reverbMix", reverbMix},      {"reverbPreset", "cathedral"}};
    file["presets"] = OrderedJson::array();
    file["mixer"] = OrderedJson::object();
    file["eqGlobalGainDB"] = eqGlobalGainDB;
    return file.dump(2);
}

LiveProcess::LiveProcess(const PrivateSoundServer &server, const LiveSettings &settings,
                         std::vector<std::string> arguments)
    : server_(server) {
    std::vector<std::string> command = {program(), "live", "--settings",
                                        writeSettings(server, settings)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    startedNanoseconds_ = static_cast<std::uint64_t>(SteadyClock::now().time_since_epoch() /
                                                     std::chrono::nanoseconds(1));
    process_ = server.start(std::move(command));
}

std::string LiveProcess::program() {
    const char *installed = std::getenv("QUORBEL_CLI_PROGRAM");
    return installed != nullptr ? installed : QUORBEL_CLI;
}

LiveProcess::~LiveProcess() { process_->stop(3.0, SIGINT); }

void LiveProcess::waitUntilRunning(double seconds) {
    // It logs this line once its stream plays on a device and its tap exists.
    const std::string pid = std::to_string(process_->pid());
    const bool runs = comesTrue(seconds, [&] {
        return !process_->running() || hasLogged("[SystemAudioTap] running: tap=");
    });
    if (!runs || !process_->running()) {
        throw ServerError("ostrafine-cli live (" + pid + ") does not run: " + process_->errors() +
                          process_->output());
    }
}

std::vector<std::string> LiveProcess::logLines() const {
    std::vector<std::string> lines;
    std::istringstream text(process_->output());
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

bool LiveProcess::hasLogged(const std::string &part) const {
    return std::ranges::any_of(
        logLines(), [&](const std::string &line) { return line.find(part) != std::string::npos; });
}

double LiveProcess::processorSeconds() const {
    return soundserver::processorSeconds(process_->pid());
}

double LiveProcess::memoryMiB() const { return soundserver::memoryMiB(process_->pid()); }

std::vector<pid_t> LiveProcess::helpers() const {
    std::vector<pid_t> found;
    for (const pid_t pid : server_.otherProcesses()) {
        std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
        std::string name;
        std::getline(file, name);
        if (pid != process_->pid() &&
            (name.starts_with("quorbel") || name.starts_with("ostrafine")))
            found.push_back(pid);
    }
    return found;
}

} // namespace quorbel::soundserver
