#include "ui/app/TrayItem.h"

#include "ui/app/ProgramIcon.h"
#include "ui/model/AppModel.h"

#include <QCoreApplication>

namespace quorbel {

namespace {

/// Doubles ampersands: a single one marks the next letter of a menu entry.
QString literally(QString text) { return text.replace('&', QStringLiteral("&&")); }

} // namespace

TrayItem::TrayItem(AppModel &model) : model_(model) {
    menu_.addAction(tr("Show Ostrafine"), this, &TrayItem::windowRequested);
    menu_.addSeparator();
    startStop_ = menu_.addAction(QString(), model_.engine(), &EngineModel::toggle);
    presets_ = menu_.addMenu(tr("Preset"));
    menu_.addSeparator();
    menu_.addAction(tr("Quit"), this, [] { QCoreApplication::exit(0); });
    const PresetChoiceModel &choices = *model_.presets()->choices();
    connect(&choices, &PresetChoiceModel::choicesChanged, this, &TrayItem::fillPresets);
    connect(&choices, &PresetChoiceModel::currentChanged, this, &TrayItem::markPreset);
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
    // Puts the subtitle on the second line: markup is detected in the first line only.
    icon_.setToolTip(QStringLiteral("Ostrafine\n") + model_.engine()->subtitle());
}

/// Lists favourites and the user's presets directly, the library's groups as submenus.
void TrayItem::fillPresets() {
    presets_->clear();
    qDeleteAll(presets_->findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
    presetActions_.clear();
    const QString favourites = PresetChoiceModel::tr("Favourites");
    const QString own = QString::fromUtf8(displayName(Preset::Category::user));
    QString group;
    QMenu *menu = presets_;
    for (const PresetChoiceModel::Choice &choice : model_.presets()->choices()->choices()) {
        if (choice.group != group) {
            const bool isAtHand = choice.group == favourites || choice.group == own;
            if (!group.isEmpty() && (isAtHand || menu == presets_))
                presets_->addSeparator();
            menu = isAtHand ? presets_ : presets_->addMenu(literally(choice.group));
            group = choice.group;
        }
        QAction *action = menu->addAction(literally(choice.name));
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, id = choice.id] {
            model_.presets()->apply(id);
            markPreset(); // the click has toggled the mark
        });
        presetActions_.push_back(action);
    }
    markPreset();
}

void TrayItem::markPreset() {
    const PresetChoiceModel &choices = *model_.presets()->choices();
    const int current = choices.isCurrentUnchanged() ? choices.currentIndex() : -1;
    for (std::size_t row = 0; row < presetActions_.size(); ++row)
        presetActions_[row]->setChecked(static_cast<int>(row) == current);
}

} // namespace quorbel
