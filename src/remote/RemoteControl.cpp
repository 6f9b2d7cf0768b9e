#include "remote/RemoteControl.h"

#include "settings/presets/PresetChoice.h"
#include "settings/records/SettingSchema.h"
#include "settings/records/json/JsonLiterals.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorbel {

namespace {

constexpr double startSeconds = 5.0;

using enum RemoteError::Kind;

/// Returns the window's name of the control at this path, for its list of undo steps.
std::string controlAt(const std::string &path) {
    const std::string key = path.substr(path.rfind('.') + 1); // all of it without a dot
    const auto nameIn = [&](const auto &settings) -> std::string {
        for (const auto &setting : settings)
            if (setting.key == key)
                return (setting.stage.empty() ? "" : std::string(setting.stage) + ", ") +
                       std::string(setting.label);
        return {};
    };
    if (path.starts_with("spatial."))
        return nameIn(spatialSettings);
    if (path.starts_with("mixer."))
        return nameIn(mixerSettings);
    constexpr std::pair<std::string_view, const char *> names[] = {
        {"gainDB", "Band gain"},          {"frequency", "Band frequency"}, {"q", "Band Q"},
        {"filterType", "Band type"},      {"bypassed", "Band bypass"},     {"bands", "Bands"},
        {"eqGlobalGainDB", "Global gain"}};
    for (const auto &[ending, name] : names)
        if (key == ending)
            return name;
    return "Settings";
}

} // namespace

RemoteControl::RemoteControl(ControlledProgram &program, Clock &clock)
    : program_(program), engine_(program.engine()), clock_(clock) {
    connect(&engine_, &AudioEngine::stateChanged, this, &RemoteControl::followEngineState);
    for (const auto change : {&AudioEngine::comparingChanged, &AudioEngine::outputDeviceChanged,
                              &AudioEngine::spatialChanged})
        connect(&engine_, change, this, &RemoteControl::announceSoon);
    connect(&engine_.eq(), &EQProcessor::bandsChanged, this, &RemoteControl::announceSoon);
    connect(&program_, &ControlledProgram::changed, this, &RemoteControl::announceSoon);
}

RemoteStatus RemoteControl::status() const {
    using Kind = EngineLifecycle::State::Kind;
    RemoteStatus status;
    const EngineLifecycle::State &engine = engine_.state();
    if (const std::string refusal = program_.refusal(); !refusal.empty()) {
        status.state = RemoteStatus::State::error;
        status.reason = refusal;
    } else if (engine.kind == Kind::error) {
        status.state =
            engine_.isComingBack() ? RemoteStatus::State::waiting : RemoteStatus::State::error;
        status.reason = program_.worded(engine.message);
    } else if (engine.kind == Kind::running) {
        status.state = RemoteStatus::State::running;
    } else if (engine_.isLeavingAlone()) {
        status.state = RemoteStatus::State::waiting;
        status.reason = "the output in use is left alone";
    }
    if (const Preset *active = activePreset()) {
        status.preset = active->name;
        status.isModified =
            engine_.eq().bands() != active->bands || engine_.spatial() != active->spatial;
    }
    if (const OutputProfile *profile = program_.profiles().inUse())
        status.profile = program_.profiles().titleOf(*profile);
    status.isComparing = engine_.comparing();
    if (const auto &output = engine_.outputDevice()) {
        status.outputUID = output->uid;
        status.outputName = output->name;
    }
    return status;
}

MeterReadings RemoteControl::meters() const {
    engine_.refreshReadouts();
    return {.limiterReductionDB = engine_.limiterReductionDB(),
            .autoGainDB = engine_.autoGainDB(),
            .bassTrackedFrequency = engine_.bassTrackedFrequency(),
            .voiceConfidence = engine_.voiceConfidence()};
}

const EngineLosses &RemoteControl::losses() const { return engine_.losses(); }

// Start and stop

void RemoteControl::start(StartAnswer answer) {
    if (engine_.state().kind == EngineLifecycle::State::Kind::running || engine_.isLeavingAlone()) {
        answer({});
        return;
    }
    waitingStarts_.push_back(std::move(answer));
    startDeadline_ = Timer::once(clock_, startSeconds, [this] {
        const std::string reason = program_.worded(engine_.state().message);
        answerStarts(reason.empty() ? "processing has not started within 5 seconds" : reason);
    });
    if (const std::string refusal = program_.start(); !refusal.empty())
        answerStarts(refusal);
}

void RemoteControl::stop() { program_.stop(); }

/// Also answers starts: the engine announces its state at the end of every start.
void RemoteControl::followEngineState() {
    const EngineLifecycle::State &state = engine_.state();
    const bool isRunning = state.kind == EngineLifecycle::State::Kind::running;
    if (!isRunning && engine_.comparing())
        engine_.setComparing(false);
    const std::string failure =
        state.message.empty() ? "stopped before it had started" : program_.worded(state.message);
    answerStarts(isRunning || engine_.isLeavingAlone() ? "" : failure);
    announceSoon();
}

void RemoteControl::answerStarts(const std::string &failure) {
    startDeadline_.invalidate();
    for (const StartAnswer &answer : std::exchange(waitingStarts_, {}))
        answer(failure);
}

// Presets

const Preset *RemoteControl::activePreset() const {
    const auto &presets = program_.presets();
    const auto found =
        std::ranges::find(presets, program_.activePresetID(),
                          [](const Preset &preset) { return std::optional(preset.id); });
    return found == presets.end() ? nullptr : &*found;
}

std::string RemoteControl::applyPreset(const std::string &name) {
    const Preset *preset = presetNamed(program_.presets(), name);
    if (preset == nullptr)
        throw RemoteError(invalid, "no preset is named " + quotedText(name) +
                                       "; `ostrafine-cli presets` lists them");
    return apply(*preset);
}

std::string RemoteControl::nextPreset() { return applyNeighbour(1); }

std::string RemoteControl::previousPreset() {
    return applyNeighbour(program_.presets().size() - 1);
}

std::string RemoteControl::applyNeighbour(std::size_t step) {
    const std::vector<Preset> presets = inPickerOrder(program_.presets(), program_.favourites());
    const auto active =
        std::ranges::find(presets, program_.activePresetID(),
                          [](const Preset &preset) { return std::optional(preset.id); });
    const auto index = active != presets.end() ? static_cast<std::size_t>(active - presets.begin())
                       : step == 1             ? presets.size() - 1
                                               : 0;
    return apply(presets[(index + step) % presets.size()]);
}

std::string RemoteControl::apply(const Preset &preset) {
    const Preset applied = preset; // the program may delete its own meanwhile
    program_.edit("Preset " + applied.name, "preset", [&] { program_.applyPreset(applied); });
    return applied.name;
}

// Settings

void RemoteControl::setComparing(bool comparing) {
    if (comparing && engine_.state().kind != EngineLifecycle::State::Kind::running)
        throw RemoteError(refused, "nothing to compare: processing does not run");
    engine_.setComparing(comparing);
}

Persisted RemoteControl::settings() const {
    const Preset *active = activePreset();
    const auto &output = engine_.outputDevice();
    return {.bands = engine_.eq().bands(),
            .spatial = engine_.spatial(),
            .presets = program_.presets(),
            .activePresetID = program_.activePresetID(),
            .mixer = engine_.mixer(),
            .activePresetName = active != nullptr ? std::optional(active->name) : std::nullopt,
            .eqGlobalGainDB = engine_.eq().globalGainDB(),
            .outputDeviceUID = output ? std::optional(output->uid) : std::nullopt};
}

SettingValue RemoteControl::get(const std::string &path) const {
    try {
        return settingAt(settings(), path);
    } catch (const CodingError &error) {
        throw RemoteError(invalid, error.what());
    }
}

void RemoteControl::set(const std::string &path, const SettingValue &value) {
    const Persisted before = settings();
    Persisted after = before;
    std::string written;
    try {
        written = setSettingAt(after, path, value);
    } catch (const CodingError &error) {
        throw RemoteError(invalid, error.what());
    }
    if (written == "outputDeviceUID") {
        setOutput(after.outputDeviceUID.value_or(""));
        return;
    }
    if (after == before)
        return;
    program_.edit(controlAt(written), written, [&] {
        const auto change = engine_.changeSettings();
        if (after.bands != before.bands)
            engine_.eq().setBands(after.bands);
        if (after.eqGlobalGainDB != before.eqGlobalGainDB)
            engine_.eq().setGlobalGainDB(after.eqGlobalGainDB.value_or(0.0F));
        if (after.spatial != before.spatial)
            engine_.setSpatial(after.spatial);
        if (after.mixer != before.mixer)
            engine_.setMixer(after.mixer.value_or(MixerConfig{}));
    });
}

void RemoteControl::setOutput(const std::string &uid) {
    program_.devices().refreshIfChanged(); // a stopped engine does not observe the hardware
    auto device = program_.devices().outputDevice(uid);
    if (!device) {
        std::string there;
        for (const AudioDevice &candidate : program_.devices().outputDevices())
            there += (there.empty() ? "; there are: " : ", ") + candidate.uid;
        throw RemoteError(invalid, "outputDeviceUID: no output device has the uid " +
                                       quotedText(uid) + there);
    }
    engine_.setOutputDevice(std::move(device));
}

void RemoteControl::announceSoon() {
    announcement_ = Timer::once(clock_, 0.0, [this] { Q_EMIT statusChanged(); });
}

} // namespace quorbel
