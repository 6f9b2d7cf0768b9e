#pragma once

#include "analysis/SpectrumAnalyzer.h"
#include "devices/DeviceManager.h"
#include "engine/AudioRingBuffer.h"
#include "engine/EngineDiagnostics.h"
#include "engine/EngineLifecycle.h"
#include "engine/MeterReadings.h"
#include "engine/OutputRule.h"
#include "engine/PlaybackGraph.h"
#include "engine/ProcessingChain.h"
#include "engine/SystemAudioTap.h"
#include "platform/threads/SerialQueue.h"
#include "platform/threads/Timer.h"
#include "platform/units/AudioUnitRegistry.h"
#include "settings/records/EQBand.h"
#include "settings/records/MixerConfig.h"
#include "settings/records/SpatialConfig.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace quorbel {

class DeviceManager;

/// Restarts that kept the processing running.
struct EngineUpheavals {
    int outputRestarts = 0; ///< playback moved or was rebound
    int comebacks = 0;      ///< full restarts after a failure
};

/// Runs the live sound: captures into the ring buffer, plays from it through the playback graph,
/// and sends the settings to the stages. Starts and stops all parts together and keeps them running
/// through hardware changes. Publishes the values that the screens show. All calls [main].
///
/// The logic of its parts is in SystemAudioTap, PlaybackGraph, ProcessingChain and
/// EngineDiagnostics; AudioEngineRestart.cpp holds its reactions to the hardware.
class AudioEngine final : public QObject {
    Q_OBJECT

  public:
    /// Fills the registry of effect units; by default with all of this program's units.
    using UnitRegistration = std::function<void(AudioUnitRegistry &)>;

    /// Hardware, device manager and clock must outlive the engine. `queues` makes the queue of the
    /// display's tap.
    AudioEngine(AudioHardware &hardware, DeviceManager &deviceManager, Clock &clock,
                std::vector<EQBand> bands, const UnitRegistration &registerUnits = allEffectUnits,
                SerialQueueFactory queues = threadedSerialQueues());
    ~AudioEngine() override;

    // Settings. Each assignment applies at once and emits its signal, even without a change.
    [[nodiscard]] const SpatialConfig &spatial() const { return spatial_; }
    void setSpatial(const SpatialConfig &spatial);
    [[nodiscard]] const MixerConfig &mixer() const { return mixer_; }
    void setMixer(const MixerConfig &mixer);
    [[nodiscard]] EQProcessor &eq() { return chain_.eq(); }
    /// Applies all settings made while the result lives, the equaliser's included, from the same
    /// block on: `const auto change = engine.changeSettings();`. Hold it for the assignments only.
    [[nodiscard]] ProcessingChain::SettingsChange changeSettings() {
        return ProcessingChain::SettingsChange(chain_);
    }

    /// The device in use: the chosen one or its stand-in.
    [[nodiscard]] const std::optional<AudioDevice> &outputDevice() const { return outputDevice_; }
    /// Sets the user's choice and clears the no-output error. While running, playback moves after a
    /// short debounce. The current default output replaces the chosen device while that is missing.
    void setOutputDevice(std::optional<AudioDevice> device);

    /// Uid of the user's choice, present or not; empty without a choice.
    [[nodiscard]] const std::optional<std::string> &outputChoice() const { return chosenUID_; }
    /// Restores the choice of an earlier run. The current output stands in if the device is
    /// missing.
    void restoreOutputChoice(std::optional<std::string> uid);
    /// From now on, uses the current default output if the chosen device is missing or none is
    /// chosen. Before this call only the user's choice is used.
    void useDefaultOutput();
    /// True if the device in use replaces the choice.
    [[nodiscard]] bool isOutputStandIn() const {
        return outputDevice_ && outputDevice_->uid != chosenUID_;
    }

    /// Sets the rule that decides the use of each output; null for none. The rule must outlive the
    /// engine, or be replaced before its end.
    void setOutputRule(OutputRule *rule);
    /// Applies the rule's decision about the output in use; call it when that may have changed.
    void followOutputRule();
    /// True while the user wants processing, but the rule excludes the output in use. The state is
    /// then `stopped`, nothing is captured, and the engine starts itself on another output.
    [[nodiscard]] bool isLeavingAlone() const { return isLeavingAlone_; }

    /// Enables comparing at equal loudness, at the cost of measuring the loudness. Applies from the
    /// next start.
    void setComparable(bool comparable) { chain_.setMeasuresLoudness(comparable); }
    /// Measures the peaks of `heldLevels`, at a small cost. Applies from the next start.
    void setHoldsPeaks(bool holds) { chain_.setHoldsPeaks(holds); }
    /// While comparing, plays the unprocessed sound through the limiter only, at the loudness of
    /// the processed sound. Settings may change meanwhile. A start ends the comparison.
    void setComparing(bool comparing);
    [[nodiscard]] bool comparing() const { return comparing_; }

    /// Starts asynchronously; `stateChanged` reports the result. Ignored while starting, running or
    /// leaving an output alone; retries at once while coming back.
    void start();
    /// Stops; also cancels the return after a failure.
    void stop();
    [[nodiscard]] const EngineLifecycle::State &state() const { return state_; }

    /// True while the engine waits to restart itself after a failure during processing. The state
    /// then holds the failure's text.
    [[nodiscard]] bool isComingBack() const { return comebackTimer.isSet(); }
    /// Restarts made necessary by the hardware since the user's last start.
    [[nodiscard]] const EngineUpheavals &upheavals() const { return upheavals_; }

    /// Tells whether a window or terminal shows the published values; initially true. While false,
    /// stops the read-outs and the spectrum, and delays measurements made only for display.
    void setDisplayed(bool isDisplayed);
    /// Refreshes the read-outs once while they are not displayed.
    void refreshReadouts();

    // Read-outs, refreshed ten times a second while running and displayed. Without sound, the
    // refresh stops once they are constant.
    [[nodiscard]] float limiterReductionDB() const {
        return published_.values().limiterReductionDB;
    }
    [[nodiscard]] float autoGainDB() const { return published_.values().autoGainDB; }
    [[nodiscard]] float bassTrackedFrequency() const {
        return published_.values().bassTrackedFrequency;
    }
    [[nodiscard]] float voiceConfidence() const { return published_.values().voiceConfidence; }

    /// The highest levels since `clearHeldLevels`, refreshed like the read-outs.
    [[nodiscard]] const HeldLevels &heldLevels() const { return heldLevels_; }
    void clearHeldLevels();

    /// The spectrum of the output, for the display; runs while the setting `spectrumEnabled` is on.
    [[nodiscard]] SpectrumAnalyzer &spectrumAnalyzer() { return spectrumAnalyzer_; }

    /// Publishes each meter that has changed by more than 0.05 dB.
    void updateMeters(float limiterReduction, float autoGain);

    /// Losses since the last start, as of the last whole second.
    [[nodiscard]] const EngineLosses &losses() const { return diagnostics_.losses(); }

  Q_SIGNALS:
    void spatialChanged();
    void mixerChanged();
    void outputDeviceChanged();
    void comparingChanged();
    void stateChanged(); ///< also emitted if a start or stop ends in the earlier state
    void limiterReductionDBChanged();
    void autoGainDBChanged();
    void bassTrackedFrequencyChanged();
    void voiceConfidenceChanged();
    void heldLevelsChanged();
    void lossesChanged(); ///< losses or upheavals

  private:
    static void allEffectUnits(AudioUnitRegistry &registry);

    void beginStart();
    void continueStart(EngineLifecycle::Generation start);
    void activateTap();
    void applySpatial();
    void applyMixer();
    void attachSpectrum();
    void observeHardware();
    void startTimers();
    void startReadouts();
    void setCyclesCome(bool doCome);
    void stopTimersAndSpectrum();
    void teardown();
    void publishState();
    void updateReadouts();
    void updateHeldLevels();

    // AudioEngineOutputs.cpp
    [[nodiscard]] bool hasOutputRule() const;
    [[nodiscard]] OutputUse useOfOutput() const;
    void adoptOutput();
    void decideOutput(bool isLeftAlone);
    void leaveOutputAlone();
    [[nodiscard]] bool awaitIdentity(EngineLifecycle::Generation start);

    // AudioEngineRestart.cpp
    void moveOutput(std::optional<AudioDevice> device);
    [[nodiscard]] std::optional<AudioDevice> wantedOutput() const;
    void followWantedOutput();
    void followDeviceList();
    void endErrorOfNoOutput();
    void scheduleOutputRestart();
    void restartProcessEngine();
    void handleHardwareChange();
    void rebuildTap();
    void failRunning(std::string_view message);
    void failAtRate(double sampleRate);
    void awaitComeback();
    void scheduleComeback();
    void comeBack();
    void finishComeback();
    [[nodiscard]] bool findOutputAgain();

    DeviceManager &deviceManager_;
    Clock &clock_;

    SpatialConfig spatial_;
    MixerConfig mixer_;
    bool comparing_ = false;
    std::optional<AudioDevice> outputDevice_;
    std::optional<std::string> chosenUID_;
    bool mayStandIn_ = false; ///< the default output replaces a missing choice
    OutputRule *outputRule_ = nullptr;
    bool isLeavingAlone_ = false;
    bool hasWaitedForIdentity_ = false; ///< in the current start
    EngineLifecycle::State state_;      ///< last published state
    PublishedReadings published_;
    MeterReadings lastReadings_;
    HeldLevels heldLevels_;
    int standingReadouts_ = 0; ///< number of consecutive read-outs without a change
    bool isDisplayed_ = true;
    bool doCyclesCome_ = false; ///< the running playback gets cycles

    EngineLifecycle lifecycle;
    AudioUnitRegistry registry_;
    AudioRingBuffer ringBuffer;
    ProcessingChain chain_;
    PlaybackGraph playback_;
    SystemAudioTap systemTap; ///< after the ring buffer that it writes into
    EngineDiagnostics diagnostics_;
    SpectrumAnalyzer spectrumAnalyzer_; ///< after the graph that it taps

    /// Progress of the return after a failure.
    struct Comeback {
        double failedAt = 0.0;              ///< seconds on the clock
        std::optional<double> devicesSince; ///< time at which devices reappeared
        int failedStarts = 0;
    };

    Timer bassReadoutTimer;
    Timer outputRestartTask;
    Timer identityDeadline_; ///< set while waiting for the output's identity
    Timer comebackTimer;     ///< set while waiting to return after a failure
    Comeback comeback_;
    EngineUpheavals upheavals_;
    std::shared_ptr<AudioEngine *> self_; ///< lets the hardware's threads find the engine
};

} // namespace quorbel
