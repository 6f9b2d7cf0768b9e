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

/// The program below its window on a machine in memory: two devices, the speakers the default and
/// chosen, settings in an empty folder. Nothing happens but while `advance` lets time pass. To QML
/// it is the singleton `Machine`. [main]
class SimulatedMachine final : public QObject, public PresetFileChooser {
    Q_OBJECT
    /// What the user answers when asked for files, one on each line; empty: they cancel.
    Q_PROPERTY(QString chosenFile MEMBER chosenFile_)
    Q_PROPERTY(QString suggestedName MEMBER suggestedName_)

  public:
    SimulatedMachine();
    ~SimulatedMachine() override;

    Q_INVOKABLE void advance(double seconds) { clock_.advance(seconds); }

    Q_INVOKABLE void addDevice(const QString &uid, const QString &name);
    Q_INVOKABLE void removeDevice(const QString &uid);
    /// No device at all, and none chosen.
    Q_INVOKABLE void removeAllDevices();
    /// An application plays noise like music, louder in the bass, in bursts.
    Q_INVOKABLE void playMusic();
    /// Programs play streams, each with another treatment.
    Q_INVOKABLE void playPrograms();
    /// How often the list of devices has been read so far.
    [[nodiscard]] Q_INVOKABLE int deviceListReads();
    /// The next start ends in an error with status -1.
    Q_INVOKABLE void failCapture();
    Q_INVOKABLE void repairCapture();
    /// Saves fail from now on, or work again.
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
