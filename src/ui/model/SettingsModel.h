#pragma once

#include "engine/AudioEngine.h"
#include "ui/model/SettingModel.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <map>
#include <memory>

namespace quorbel {

/// Spatial and mixer settings of the engine, one `SettingModel` per row of the schema. Each write
/// sets the whole record, so that it reaches the sound at once. [main]
class SettingsModel final : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Settings)
    QML_UNCREATABLE("App.settings is the only one")
    Q_PROPERTY(QStringList reverbPresetTitles READ reverbPresetTitles CONSTANT)
    /// Number of enabled stages per screen.
    Q_PROPERTY(int spatialStagesOn READ spatialStagesOn NOTIFY stagesChanged)
    Q_PROPERTY(int colourStagesOn READ colourStagesOn NOTIFY stagesChanged)
    Q_PROPERTY(int levelStagesOn READ levelStagesOn NOTIFY stagesChanged)
    /// Peak protection in words.
    Q_PROPERTY(QString peakProtection READ peakProtection NOTIFY stagesChanged)

  public:
    SettingsModel(AudioEngine &engine, HistoryModel &history, QObject *parent);

    /// `key` is the name in the settings file. Asserts that the setting exists.
    [[nodiscard]] SettingModel *setting(std::string_view key) const;

    [[nodiscard]] static QStringList reverbPresetTitles();
    [[nodiscard]] int spatialStagesOn() const;
    [[nodiscard]] int colourStagesOn() const;
    [[nodiscard]] int levelStagesOn() const;
    [[nodiscard]] QString peakProtection() const;

    /// Sets the three tone gains to 0 dB.
    Q_INVOKABLE void resetTone();

  Q_SIGNALS:
    void stagesChanged();

  private:
    template <class Record> void add(const Setting<Record> &setting);
    template <class Record> [[nodiscard]] const Record &current() const;
    void apply(const SpatialConfig &spatial) { engine_.setSpatial(spatial); }
    void apply(const MixerConfig &mixer) { engine_.setMixer(mixer); }
    void refresh();

    AudioEngine &engine_;
    HistoryModel &history_;
    std::map<std::string_view, SettingModel *, std::less<>> settings_; ///< children
};

} // namespace quorbel
