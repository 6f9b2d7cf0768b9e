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

    /// Sets name and version of the sound hardware's library, such as "PipeWire 1.4.2".
    void setSoundLibrary(const QString &library);

  Q_SIGNALS:
    void reportChanged();

  private:
    QString soundLibrary_;
};

/// Models of the program for QML, one per subject; the QML singleton `App`. Must exist before any
/// QML is loaded. [main]
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
    /// Last load or save problem; empty if there is none or it was dismissed.
    Q_PROPERTY(QString persistWarning READ persistWarning NOTIFY persistWarningChanged)

  public:
    /// State and clock must outlive it. The latest instance is the singleton.
    AppModel(AppState &state, Clock &clock, QObject *parent = nullptr);
    ~AppModel() override;

    /// Null before the first instance exists.
    [[nodiscard]] static AppModel *instance() { return instance_; }
    static AppModel *create(QQmlEngine *engine, QJSEngine *scripts);

    [[nodiscard]] EngineModel *engine() { return &engine_; }
    [[nodiscard]] SettingsModel *settings() { return &settings_; }
    /// Returns the spatial or mixer setting of this name in the settings file.
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
    /// Sets the program's own warning, shown with those of the settings; empty for none.
    void setSessionWarning(const QString &warning);
    /// Hides the warnings until another one appears.
    Q_INVOKABLE void dismissWarning();

  Q_SIGNALS:
    void persistWarningChanged();

  private:
    static AppModel *instance_;

    AppState &state_;
    bool warningDismissed_ = false;
    QString sessionWarning_;
    FavouritePresets favourites_;
    HistoryModel history_; ///< declared first: other models write through it
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
