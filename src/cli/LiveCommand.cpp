#include "cli/CommandError.h"
#include "cli/CommandSettings.h"
#include "cli/Commands.h"
#include "cli/ControlledLive.h"
#include "cli/LiveMeter.h"
#include "cli/SoundServer.h"
#include "devices/DeviceManager.h"
#include "engine/AudioEngine.h"
#include "platform/hardware/RuntimeFolder.h"
#include "platform/threads/MainLoopClock.h"
#include "platform/threads/TerminationSignals.h"
#include "remote/RemoteService.h"
#include "remote/SessionBus.h"
#include "settings/records/SettingsFile.h"
#include "settings/records/json/JsonLiterals.h"
#include "settings/state/OutputChoiceFile.h"

#include <fmt/format.h>

#include <QCoreApplication>

#include <csignal>
#include <optional>
#include <string>
#include <utility>

namespace quorbel {

namespace {

AudioDevice deviceNamed(const DeviceManager &manager, const std::string &uid) {
    const auto device = manager.outputDevice(uid);
    if (!device)
        throw CommandError(
            fmt::format("no output device has the uid {}; `ostrafine-cli devices` lists them",
                        quotedText(uid)));
    return *device;
}

class LiveCommand final : public Command {
  public:
    LiveCommand();

    /// Throws CommandError and leaves the original sound.
    void run() const override;

    /// Only the log uses it: processing continues after the log's reader ends.
    [[nodiscard]] bool needsOutput() const override { return false; }

  private:
    std::string settingsPath_;
    std::optional<std::string> presetName_;
    std::optional<std::string> deviceUID_;
    std::optional<double> seconds_;
};

LiveCommand::LiveCommand()
    : Command("live", "Process everything the computer plays, until Ctrl-C") {
    declare({.name = "--settings",
             .help = "Settings file (default: your own, else the factory settings)",
             .values = {{"FILE", CommandValue::Completion::file}},
             .variable = &settingsPath_});
    declare({.name = "--preset",
             .help = "Preset to use in place of the settings' bands and spatial effects",
             .values = {{"NAME", CommandValue::Completion::presetName}},
             .variable = &presetName_});
    declare({.name = "--device",
             .help = "UID of the device to play on (default: the saved one, else the system's "
                     "default output)",
             .values = {{"UID", CommandValue::Completion::deviceUID}},
             .variable = &deviceUID_});
    declare({.name = "--seconds",
             .help = "Stop after this time",
             .values = {{"SECONDS"}},
             .variable = &seconds_});
}

void LiveCommand::run() const {
    std::signal(SIGPIPE, SIG_IGN); // processing continues after the log's reader ends
    TerminationSignals signals;
    Persisted settings = loadSettings(settingsPath_);
    const ProgramRules programRules = loadProgramRules();
    ChainSettings chain = chainSettings(settings, settingsPath_, presetName_);
    if (presetName_)
        applyPreset(settings, *presetName_);
    settings.presets = availablePresets(settings);
    chain.mixer.spectrumEnabled = false; // no spectrum display
    std::optional<InstanceLock> lock(std::in_place);
    if (!lock->isHeld())
        throw CommandError("Ostrafine is already running and processes the sound");

    // Qt's own event loop has cheaper wake-ups than GLib's.
    qputenv("QT_NO_GLIB", "1");
    int argumentCount = 1;
    char name[] = "ostrafine-cli";
    char *arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const auto hardware = hardwareOrError();
    hardware->setProgramRules(programRules);
    MainLoopClock clock;
    DeviceManager devices(*hardware, clock);
    AudioEngine engine(*hardware, devices, clock, chain.bands);
    engine.eq().setGlobalGainDB(chain.eqGlobalGainDB);
    engine.eq().setPresetGainDB(chain.presetGainDB);
    engine.setSpatial(chain.spatial);
    engine.setMixer(chain.mixer);
    engine.setComparable(!sessionBusAddress().isEmpty()); // compared only by remote control
    // Settings from the command line apply to every output.
    LiveProfiles profiles(engine, settings, loadPresetGains(settingsPath_));
    if (settingsPath_.empty() && !presetName_)
        profiles.follow();
    if (deviceUID_) {
        engine.setOutputDevice(deviceNamed(devices, *deviceUID_));
    } else {
        engine.restoreOutputChoice(
            settingsPath_.empty()
                ? OutputChoiceFile(userSettingsPath()).chosenUID(settings.outputDeviceUID)
                : settings.outputDeviceUID);
        engine.useDefaultOutput();
    }

    signals.endEventLoop();
    ControlledLive program(engine, devices, lock, profiles);
    RemoteControl control(program, clock);
    std::optional<RemoteService> service;
    std::optional<SessionBusConnector> connector;
    std::string failure;
    Timer end;
    QObject::connect(&engine, &AudioEngine::stateChanged, &application, [&] {
        const EngineLifecycle::State &state = engine.state();
        if (state.kind == EngineLifecycle::State::Kind::error && !engine.isComingBack()) {
            if (program.wasStartAsked())
                return; // the remote caller gets the message
            failure = state.message;
            QCoreApplication::exit(1);
        } else if (state.kind == EngineLifecycle::State::Kind::running || engine.isLeavingAlone()) {
            if (seconds_ && !end.isSet())
                end = Timer::once(clock, *seconds_, [] { QCoreApplication::quit(); });
            if (!connector) // sound first, remote control second
                connector.emplace(
                    QStringLiteral("ostrafine-live"), clock,
                    [&](const QDBusConnection &bus) { service.emplace(control, bus); });
        }
    });
    {
        const LiveMeter meter(engine, clock);
        clock.post([&] { engine.start(); });
        QCoreApplication::exec();
        engine.stop();
    }
    if (!failure.empty())
        throw CommandError(failure);
}

} // namespace

std::unique_ptr<Command> makeLiveCommand() { return std::make_unique<LiveCommand>(); }

} // namespace quorbel
