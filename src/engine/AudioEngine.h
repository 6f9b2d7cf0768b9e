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

/// What was done so that processing goes on.
struct EngineUpheavals {
    int outputRestarts = 0; ///< playback moved or was bound anew
    int comebacks = 0;      ///< everything started again after a failure
};

/// Conducts the live sound: capture into the ring buffer, the playback graph out of it, the
/// settings into its stages; starts and stops them together and keeps them running through changes
/// of the hardware. What it publishes is what the screens show. All calls [main].
///
/// It holds no logic of the parts it conducts: see SystemAudioTap, PlaybackGraph, ProcessingChain,
/// EngineDiagnostics. AudioEngineRestart.cpp holds its reactions to the hardware.
class AudioEngine final : public QObject {
    Q_OBJECT

  public:
    /// Fills the registry of effect units; by default with every unit this program has.
    using UnitRegistration = std::function<void(AudioUnitRegistry &)>;

    /// Hardware, device manager and clock must outlive the engine. `queues` makes the threads of
    /// its own that the display's tap is served on.
    AudioEngine(AudioHardware &hardware, DeviceManager &deviceManager, Clock &clock,
                std::vector<EQBand> bands, const UnitRegistration &registerUnits = allEffectUnits,
                SerialQueueFactory queues = threadedSerialQueues());
    ~AudioEngine() override;

    // Settings. Each assignment reaches the sound at once and is announced, also one that changes
    // nothing.
    [[nodiscard]] const SpatialConfig &spatial() const { return spatial_; }
    void setSpatial(const SpatialConfig &spatial);
    [[nodiscard]] const MixerConfig &mixer() const { return mixer_; }
    void setMixer(const MixerConfig &mixer);
    [[nodiscard]] EQProcessor &eq() { return chain_.eq(); }
    /// Settings made while the result lives, the equaliser's included, are heard from one block on:
    /// `const auto change = engine.changeSettings();`. To be held for the assignments only.
    [[nodiscard]] ProcessingChain::SettingsChange changeSettings() {
        return ProcessingChain::SettingsChange(chain_);
    }

    /// The device in use: the chosen one or its stand-in.
    [[nodiscard]] const std::optional<AudioDevice> &outputDevice() const { return outputDevice_; }
    /// The user's choice, which ends an error of having none. While running, playback moves after a
    /// short pause for more such changes. While the chosen device is away, the current default
    /// output replaces it; when the device is back, it is in use again.
    void setOutputDevice(std::optional<AudioDevice> device);

    /// The uid of the device that the user chose, there or not; none where they chose none.
    [[nodiscard]] const std::optional<std::string> &outputChoice() const { return chosenUID_; }
    /// A choice of an earlier session: in use if the device is there. Otherwise the output stays as
    /// it is, as a stand-in.
    void restoreOutputChoice(std::optional<std::string> uid);
    /// From now on the current default output is in use where the chosen device is away or none was
    /// chosen. Before this, nothing is selected until the user selects it.
    void useDefaultOutput();
    /// Whether the device in use is not the choice.
    [[nodiscard]] bool isOutputStandIn() const {
        return outputDevice_ && outputDevice_->uid != chosenUID_;
    }

    /// From now on `rule`, which must outlive the engine or be taken back, says what each output is
    /// used for; null for none.
    void setOutputRule(OutputRule *rule);
    /// To be called when the rule has another opinion of the output in use.
    void followOutputRule();
    /// Whether the user wants processing, but not on the output in use: nothing is captured. The
    /// state is `stopped` meanwhile; the engine starts by itself with another output.
    [[nodiscard]] bool isLeavingAlone() const { return isLeavingAlone_; }

    /// Whether playback can be compared with the unprocessed sound; measuring the loudness for that
    /// costs a little. From the next start on.
    void setComparable(bool comparable) { chain_.setMeasuresLoudness(comparable); }
    /// While comparing, the unprocessed sound is heard, as loud as the processed one was; only the
    /// limiter stays. Settings may change meanwhile. A start ends it.
    void setComparing(bool comparing);
    [[nodiscard]] bool comparing() const { return comparing_; }

    /// Returns at once; the outcome is a change of `state`. Ignored while starting or running;
    /// while coming back it means a look at once.
    void start();
    /// Also ends the wish to come back.
    void stop();
    [[nodiscard]] const EngineLifecycle::State &state() const { return state_; }

    /// True while the engine, after a failure in the middle of processing, waits for the hardware
    /// to be fit again and then starts by itself. The state is the failure's text meanwhile.
    [[nodiscard]] bool isComingBack() const { return comebackTimer.isSet(); }
    /// What the hardware has made necessary since the user's last start.
    [[nodiscard]] const EngineUpheavals &upheavals() const { return upheavals_; }

    /// Whether somebody sees what is published for display. If not, the read-outs stay as they are,
    /// the spectrum is not analysed, and what only the read-outs show is measured later; at first
    /// somebody does.
    void setDisplayed(bool isDisplayed);

    // Read-outs, refreshed ten times a second while running and displayed. While no sound comes
    // they rest as soon as they stand still.
    [[nodiscard]] float limiterReductionDB() const {
        return published_.values().limiterReductionDB;
    }
    [[nodiscard]] float autoGainDB() const { return published_.values().autoGainDB; }
    [[nodiscard]] float bassTrackedFrequency() const {
        return published_.values().bassTrackedFrequency;
    }
    [[nodiscard]] float voiceConfidence() const { return published_.values().voiceConfidence; }

    /// What is heard, for the display; runs while the setting `spectrumEnabled` is on.
    [[nodiscard]] SpectrumAnalyzer &spectrumAnalyzer() { return spectrumAnalyzer_; }

    /// Publishes the two meters where they have moved by more than 0.05 dB.
    void updateMeters(float limiterReduction, float autoGain);

    /// What was lost since the last start, as of the last whole second.
    [[nodiscard]] const EngineLosses &losses() const { return diagnostics_.losses(); }

  Q_SIGNALS:
    void spatialChanged();
    void mixerChanged();
    void outputDeviceChanged();
    void comparingChanged();
    void stateChanged(); ///< also where a start or a stop ends in the state before it
    void limiterReductionDBChanged();
    void autoGainDBChanged();
    void bassTrackedFrequencyChanged();
    void voiceConfidenceChanged();
    void lossesChanged(); ///< or the upheavals

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
    bool mayStandIn_ = false; ///< the default output takes the place of a choice that is away
    OutputRule *outputRule_ = nullptr;
    bool isLeavingAlone_ = false;
    bool hasWaitedForIdentity_ = false; ///< in the start under way
    EngineLifecycle::State state_;      ///< the lifecycle's, as last published
    PublishedReadings published_;
    MeterReadings lastReadings_;
    int standingReadouts_ = 0; ///< in a row, in which nothing has moved
    bool isDisplayed_ = true;
    bool doCyclesCome_ = false; ///< of the running playback

    EngineLifecycle lifecycle;
    AudioUnitRegistry registry_;
    AudioRingBuffer ringBuffer;
    ProcessingChain chain_;
    PlaybackGraph playback_;
    SystemAudioTap systemTap; ///< after the ring buffer that it writes into
    EngineDiagnostics diagnostics_;
    SpectrumAnalyzer spectrumAnalyzer_; ///< after the graph that it taps

    /// How the return after a failure stands.
    struct Comeback {
        double failedAt = 0.0;              ///< seconds on the clock
        std::optional<double> devicesSince; ///< when the first device was seen again
        int failedStarts = 0;
    };

    Timer bassReadoutTimer;
    Timer outputRestartTask;
    Timer identityDeadline_; ///< set while the output's identity is waited for
    Timer comebackTimer;     ///< set while the wish to process waits for the hardware
    Comeback comeback_;
    EngineUpheavals upheavals_;
    std::shared_ptr<AudioEngine *> self_; ///< what the hardware's threads find the engine by
};

} // namespace quorbel
