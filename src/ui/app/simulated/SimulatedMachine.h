#pragma once

#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"
#include "settings/state/AppState.h"
#include "ui/model/AppModel.h"
#include "ui/model/PresetFileChooser.h"

#include <QObject>
#include <QTemporaryDir>

#include <memory>

namespace quorbel::simulated {

/// Program without its window on simulated hardware: two devices, the speakers default and chosen,
/// and settings in an empty folder. Time passes only during `advance`. QML knows it as the
/// singleton `Machine`. [main]
class SimulatedMachine final : public QObject, public PresetFileChooser {
    Q_OBJECT
    /// Paths that the user chooses in a file dialog, one per line; empty if they cancel.
    Q_PROPERTY(QString chosenFile MEMBER chosenFile_)
    Q_PROPERTY(QString suggestedName MEMBER suggestedName_)

  public:
    SimulatedMachine();
    ~SimulatedMachine() override;

    Q_INVOKABLE void advance(double seconds) { clock_.advance(seconds); }

    Q_INVOKABLE void addDevice(const QString &uid, const QString &name);
    Q_INVOKABLE void removeDevice(const QString &uid);
    /// Removes all devices and the choice of one.
    Q_INVOKABLE void removeAllDevices();
    /// Plays a signal like music, louder in the bass, in bursts.
    Q_INVOKABLE void playMusic();
    /// Adds playback streams of programs, with different treatments.
    Q_INVOKABLE void playPrograms();
    /// Number of times the device list has been read.
    [[nodiscard]] Q_INVOKABLE int deviceListReads();
    /// Makes starts fail with status -1 until `repairCapture`.
    Q_INVOKABLE void failCapture();
    Q_INVOKABLE void repairCapture();
    /// Makes saves fail until `allowSaving`.
    Q_INVOKABLE void blockSaving();
    Q_INVOKABLE void allowSaving();
    Q_INVOKABLE void persist() { state_->persist(); }

    /// Writes a file beside the settings. Returns its path.
    Q_INVOKABLE QString writeFile(const QString &name, const QString &text);
    [[nodiscard]] Q_INVOKABLE QString filePath(const QString &name) const {
        return folder_.filePath(name);
    }
    [[nodiscard]] Q_INVOKABLE bool fileExists(const QString &path) const;

    void chooseImport(FilesChosen chosen) override;
    void chooseExport(const QString &suggestedName, FileChosen chosen) override;

    [[nodiscard]] Q_INVOKABLE QString clipboard() const;

    [[nodiscard]] AppModel &model() { return *model_; }
    [[nodiscard]] AppState &state() { return *state_; }

  private:
    QString chosenFile_;
    QString suggestedName_; ///< of the last export
    QTemporaryDir folder_;
    ManualClock clock_;
    SimulatedHardware hardware_{clock_};
    std::unique_ptr<AppState> state_;
    std::unique_ptr<AppModel> model_;
};

} // namespace quorbel::simulated
