#include "ui/app/TrayItem.h"

#include "ui/app/ProgramIcon.h"
#include "ui/model/AppModel.h"

#include <QCoreApplication>

namespace quorbel {

namespace {

/// An ampersand in a menu marks the next letter, unless there are two.
QString literally(QString text) { return text.replace('&', QStringLiteral("&&")); }

} // namespace

TrayItem::TrayItem(AppModel &model) : model_(model) {
    menu_.addAction(tr("Show Ostrafine"), this, &TrayItem::windowRequested);
    menu_.addSeparator();
    startStop_ = menu_.addAction(QString(), model_.engine(), &EngineModel::toggle);
    presets_ = menu_.addMenu(tr("Preset"));
    menu_.addSeparator();
    menu_.addAction(tr("Quit"), this, [] { QCoreApplication::exit(0); });
    connect(model_.presets(), &PresetListModel::namesChanged, this, &TrayItem::fillPresets);
    connect(model_.presets(), &PresetListModel::activeNameChanged, this, &TrayItem::markPreset);
    connect(model_.presets(), &PresetListModel::activeIndexChanged, this, &TrayItem::markPreset);
    fillPresets();

    connect(model_.engine(), &EngineModel::stateChanged, this, &TrayItem::followEngine);
    connect(model_.engine(), &EngineModel::subtitleChanged, this, &TrayItem::followEngine);
    followEngine();

    icon_.setIcon(trayIcon());
    icon_.setContextMenu(&menu_);
    connect(&icon_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    Q_EMIT windowRequested();
            });
    icon_.show();
}

bool TrayItem::isThere() const { return QSystemTrayIcon::isSystemTrayAvailable(); }

void TrayItem::followEngine() {
    startStop_->setText(model_.engine()->running() ? tr("Stop processing")
                                                   : tr("Start processing"));
    icon_.setToolTip(tr("Ostrafine: %1").arg(model_.engine()->subtitle()));
}

void TrayItem::fillPresets() {
    presets_->clear();
    const QStringList names = model_.presets()->names();
    for (int row = 0; row < names.size(); ++row) {
        QAction *action = presets_->addAction(literally(names[row]));
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, row] {
            model_.presets()->applyRow(row);
            markPreset(); // the click has toggled the mark
        });
    }
    markPreset();
}

void TrayItem::markPreset() {
    const PresetListModel &presets = *model_.presets();
    const int active = presets.activeIndex();
    // None is marked while the settings are no longer any preset's own.
    const bool isAsSaved = active >= 0 && presets.names().value(active) == presets.activeName();
    const auto actions = presets_->actions();
    for (qsizetype row = 0; row < actions.size(); ++row)
        actions[row]->setChecked(isAsSaved && row == active);
}

} // namespace quorbel
