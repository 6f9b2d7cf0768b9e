#include "ui/model/AppModel.h"

#include "platform/core/Version.h"

#include <QJSEngine>
#include <QStringList>
#include <QSysInfo>

namespace quorbel {

QString AboutModel::version() { return QString::fromUtf8(quorbel::version); }

QString AboutModel::report() const {
    QStringList lines = {"Ostrafine " + version(), QString("Qt ") + qVersion(), soundLibrary_,
                         QSysInfo::prettyProductName() + ", " + QSysInfo::kernelType() + ' ' +
                             QSysInfo::kernelVersion() + ", " + QSysInfo::currentCpuArchitecture()};
    lines.removeAll(QString());
    return lines.join('\n');
}

void AboutModel::setSoundLibrary(const QString &library) {
    soundLibrary_ = library;
    Q_EMIT reportChanged();
}

AppModel *AppModel::instance_ = nullptr;

AppModel::AppModel(AppState &state, Clock &clock, QObject *parent)
    : QObject(parent), state_(state), favourites_(state.settingsPath(), nullptr),
      history_(state, favourites_, clock, nullptr), engine_(state, clock, nullptr),
      settings_(state.engine(), history_, nullptr),
      equalizer_(state.engine().eq(), history_, nullptr),
      level_(state.engine(), history_, clock, nullptr),
      presets_(state, favourites_, history_, nullptr), devices_(state, clock, nullptr),
      profiles_(state, nullptr), programs_(state, clock, nullptr), programRules_(state, nullptr),
      spectrum_(state.engine(), nullptr), navigation_(state, nullptr), startAtLogin_(nullptr),
      about_(nullptr) {
    instance_ = this;
    state_.engine().setComparable(true);
    state_.engine().setHoldsPeaks(true);
    state_.engine().useDefaultOutput(); // so that a first Start works
    const auto showWarning = [this] {
        warningDismissed_ = false;
        Q_EMIT persistWarningChanged();
    };
    connect(&state_, &AppState::persistWarningChanged, this, showWarning);
    connect(&favourites_, &FavouritePresets::warningChanged, this, showWarning);
    connect(&presets_, &PresetListModel::activeNameChanged, &engine_,
            &EngineModel::subtitleChanged);
}

AppModel::~AppModel() {
    if (instance_ == this)
        instance_ = nullptr;
}

AppModel *AppModel::create(QQmlEngine *, QJSEngine *) {
    Q_ASSERT_X(instance_ != nullptr, "App", "QML was loaded before the program made its model");
    QJSEngine::setObjectOwnership(instance_, QJSEngine::CppOwnership);
    return instance_;
}

QString AppModel::persistWarning() const {
    if (warningDismissed_)
        return {};
    QStringList warnings;
    if (const auto &warning = state_.persistWarning())
        warnings << QString::fromStdString(*warning);
    if (!favourites_.warning().isEmpty())
        warnings << favourites_.warning();
    if (!sessionWarning_.isEmpty())
        warnings << sessionWarning_;
    return warnings.join('\n');
}

void AppModel::setSessionWarning(const QString &warning) {
    sessionWarning_ = warning;
    warningDismissed_ = false;
    Q_EMIT persistWarningChanged();
}

void AppModel::dismissWarning() {
    warningDismissed_ = true;
    Q_EMIT persistWarningChanged();
}

} // namespace quorbel
