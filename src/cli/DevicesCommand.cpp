#include "cli/Commands.h"
#include "cli/PrintableText.h"
#include "cli/SoundServer.h"
#include "devices/DeviceManager.h"
#include "platform/threads/ManualClock.h"
#include "settings/records/json/JsonLiterals.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace quorbel {

namespace {

std::string jsonString(const std::string &text) {
    std::string json;
    return appendString(json, text) ? json : "null";
}

void printJson(const std::vector<AudioDevice> &devices, const std::string &defaultUID) {
    std::string json = "[";
    for (const AudioDevice &device : devices)
        json += fmt::format(
            R"({}{{"uid":{},"name":{},"manufacturer":{},"inputChannels":{},"outputChannels":{},"isDefault":{}}})",
            json.size() > 1 ? "," : "", jsonString(device.uid), jsonString(device.name),
            jsonString(device.manufacturer), device.inputChannels, device.outputChannels,
            device.uid == defaultUID);
    fmt::print("{}]\n", json);
}

void printTable(const std::vector<AudioDevice> &devices, const std::string &defaultUID) {
    std::size_t width = 0;
    for (const AudioDevice &device : devices)
        width = std::max(width, device.uid.size());
    for (const AudioDevice &device : devices)
        fmt::print("{} {:<{}}  {}, {} channel{}\n", device.uid == defaultUID ? '*' : ' ',
                   printable(device.uid), width, printable(device.name), device.outputChannels,
                   device.outputChannels == 1 ? "" : "s");
    if (devices.empty())
        fmt::print("No output device found.\n");
}

class DevicesCommand final : public Command {
  public:
    DevicesCommand();

    void run() const override;

  private:
    bool json_ = false;
    bool uids_ = false;
};

DevicesCommand::DevicesCommand()
    : Command("devices", "List the output devices; * marks the default") {
    declare({.name = "--json", .help = "As a JSON array", .variable = &json_});
    declare({.name = "--uids",
             .help = "Only the UIDs, one on each line",
             .variable = &uids_,
             .excludes = "--json"});
}

void DevicesCommand::run() const {
    const auto hardware = hardwareOrError();
    ManualClock clock; // never advanced: the command waits for nothing
    const DeviceManager manager(*hardware, clock);
    const std::string defaultUID = manager.currentDefaultOutputUID().value_or("");
    if (json_)
        printJson(manager.outputDevices(), defaultUID);
    else if (uids_)
        for (const AudioDevice &device : manager.outputDevices())
            fmt::print("{}\n", printable(device.uid));
    else
        printTable(manager.outputDevices(), defaultUID);
}

} // namespace

std::unique_ptr<Command> makeDevicesCommand() { return std::make_unique<DevicesCommand>(); }

} // namespace quorbel
