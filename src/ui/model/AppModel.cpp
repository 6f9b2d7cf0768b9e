#include "ui/model/AppModel.h"

#include <QJSEngine>

namespace quorbel {

AppModel *AppModel::instance_ = nullptr;

AppModel::AppModel(AppState &state, Clock &clock, QObject *parent)
    : QObject(parent), state_(state), history_(state, clock, nullptr), engine_(state, nullptr),
      settings_(state.engine(), history_, nullptr),
      equalizer_(state.engine().eq(), history_, nullptr), presets_(state, history_, nullptr),
      devices_(state, clock, nullptr), spectrum_(state.engine(), nullptr),
      navigation_(state, nullptr), about_(nullptr) {
    instance_ = this;
    state_.engine().setComparable(true);
    state_.engine().useDefaultOutput(); // so that a first Start works
    connect(&state_, &AppState::persistWarningChanged, this, [this] {
        warningDismissed_ = false;
        Q_EMIT persistWarningChanged();
    });
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
    const auto &warning = state_.persistWarning();
    return warning && !warningDismissed_ ? QString::fromStdString(*warning) : QString();
}

void AppModel::dismissWarning() {
    warningDismissed_ = true;
    Q_EMIT persistWarningChanged();
}

} // namespace quorbel
