#pragma once

#include "ui/model/DeviceListModel.h"
#include "ui/model/EngineModel.h"
#include "ui/model/EqualizerModel.h"
#include "ui/model/FavouritePresets.h"
#include "ui/model/HistoryModel.h"
#include "ui/model/LevelModel.h"
#include "ui/model/NavigationModel.h"
#include "ui/model/OutputProfileModel.h"
#include "ui/model/PresetListModel.h"
#include "ui/model/ProgramListModel.h"
#include "ui/model/ProgramRuleModel.h"
#include "ui/model/SettingsModel.h"
#include "ui/model/SpectrumModel.h"
#include "ui/model/StartAtLoginModel.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace quorbel {

/// Versions of the program and its libraries. [main]
class AboutModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.about is the only one")
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString report READ report NOTIFY reportChanged)

  public:
    explicit AboutModel(QObject *parent) : QObject(parent) {}

    [[nodiscard]] static QString version();
    /// Lines for a bug report: the versions of the program, its libraries and the system.
    [[nodiscard]] QString report() const;

    /// Name and version of the library below the sound hardware, such as "PipeWire 1.4.2".
    void setSoundLibrary(const QString &library);

  Q_SIGNALS:
    void reportChanged();

  private:
    QString soundLibrary_;
};

/// The program as QML sees it: one object for each subject. The program makes it before it loads
/// any QML; QML finds it as the singleton `App`. [main]
class AppModel final : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(App)
    QML_SINGLETON
    Q_PROPERTY(quorbel::EngineModel *engine READ engine CONSTANT)
    Q_PROPERTY(quorbel::SettingsModel *settings READ settings CONSTANT)
    Q_PROPERTY(quorbel::EqualizerModel *equalizer READ equalizer CONSTANT)
    Q_PROPERTY(quorbel::LevelModel *level READ level CONSTANT)
    Q_PROPERTY(quorbel::PresetListModel *presets READ presets CONSTANT)
    Q_PROPERTY(quorbel::DeviceListModel *devices READ devices CONSTANT)
    Q_PROPERTY(quorbel::OutputProfileModel *profiles READ profiles CONSTANT)
    Q_PROPERTY(quorbel::ProgramListModel *programs READ programs CONSTANT)
    Q_PROPERTY(quorbel::ProgramRuleModel *programRules READ programRules CONSTANT)
    Q_PROPERTY(quorbel::SpectrumModel *spectrum READ spectrum CONSTANT)
    Q_PROPERTY(quorbel::NavigationModel *navigation READ navigation CONSTANT)
    Q_PROPERTY(quorbel::HistoryModel *history READ history CONSTANT)
    Q_PROPERTY(quorbel::StartAtLoginModel *startAtLogin READ startAtLogin CONSTANT)
    Q_PROPERTY(quorbel::AboutModel *about READ about CONSTANT)
    /// The last load or save problem; empty when there is none or it was dismissed.
    Q_PROPERTY(QString persistWarning READ persistWarning NOTIFY persistWarningChanged)

  public:
    /// State and clock must outlive it. The newest one is the singleton.
    AppModel(AppState &state, Clock &clock, QObject *parent = nullptr);
    ~AppModel() override;

    /// Null before the program has made one.
    [[nodiscard]] static AppModel *instance() { return instance_; }
    static AppModel *create(QQmlEngine *engine, QJSEngine *scripts);

    [[nodiscard]] EngineModel *engine() { return &engine_; }
    [[nodiscard]] SettingsModel *settings() { return &settings_; }
    /// The spatial or mixer setting of this name in the settings file.
    Q_INVOKABLE quorbel::SettingModel *setting(const QString &key) const {
        return settings_.setting(key.toStdString());
    }
    [[nodiscard]] EqualizerModel *equalizer() { return &equalizer_; }
    [[nodiscard]] LevelModel *level() { return &level_; }
    [[nodiscard]] PresetListModel *presets() { return &presets_; }
    [[nodiscard]] DeviceListModel *devices() { return &devices_; }
    [[nodiscard]] OutputProfileModel *profiles() { return &profiles_; }
    [[nodiscard]] ProgramListModel *programs() { return &programs_; }
    [[nodiscard]] ProgramRuleModel *programRules() { return &programRules_; }
    [[nodiscard]] SpectrumModel *spectrum() { return &spectrum_; }
    [[nodiscard]] NavigationModel *navigation() { return &navigation_; }
    [[nodiscard]] HistoryModel *history() { return &history_; }
    [[nodiscard]] StartAtLoginModel *startAtLogin() { return &startAtLogin_; }
    [[nodiscard]] AboutModel *about() { return &about_; }
    [[nodiscard]] const FavouritePresets &favourites() const { return favourites_; }

    [[nodiscard]] QString persistWarning() const;
    /// A warning of the program's own, shown with those of the settings; empty for none.
    void setSessionWarning(const QString &warning);
    /// Until there is another one.
    Q_INVOKABLE void dismissWarning();

  Q_SIGNALS:
    void persistWarningChanged();

  private:
    static AppModel *instance_;

    AppState &state_;
    bool warningDismissed_ = false;
    QString sessionWarning_;
    FavouritePresets favourites_;
    HistoryModel history_; ///< first: others write through it
    EngineModel engine_;
    SettingsModel settings_;
    EqualizerModel equalizer_;
    LevelModel level_;
    PresetListModel presets_;
    DeviceListModel devices_;
    OutputProfileModel profiles_;
    ProgramListModel programs_;
    ProgramRuleModel programRules_;
    SpectrumModel spectrum_;
    NavigationModel navigation_;
    StartAtLoginModel startAtLogin_;
    AboutModel about_;
};

} // namespace quorbel
