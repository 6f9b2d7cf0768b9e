#pragma once

#include "platform/threads/Clock.h"
#include "settings/state/AppState.h"
#include "ui/logic/EditHistory.h"
#include "ui/model/FavouritePresets.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace quorbel {

/// Undo and redo of all changes in the window. Only changes made through `edit` can be undone.
/// [main]
class HistoryModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.history is the only one")
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY changed)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)
    Q_PROPERTY(QString redoText READ redoText NOTIFY changed)

  public:
    HistoryModel(AppState &state, FavouritePresets &favourites, Clock &clock, QObject *parent);

    /// Runs `change` on the settings and records the step. `what` follows "Undo "; changes of the
    /// same `key` in quick succession become one step.
    void edit(const QString &what, const std::string &key, const std::function<void()> &change);
    /// Overload with `what` as the key.
    void edit(const char *what, const std::function<void()> &change) {
        edit(QString::fromUtf8(what), what, change);
    }

    [[nodiscard]] bool canUndo() const { return history_.canUndo(); }
    [[nodiscard]] bool canRedo() const { return history_.canRedo(); }
    /// "Undo Deep Bass, Amount"; only "Undo" if there is no step.
    [[nodiscard]] QString undoText() const;
    [[nodiscard]] QString redoText() const;

    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();

    /// Combines all changes between the two calls into one step. Called when a control is pressed
    /// and released.
    Q_INVOKABLE void beginGesture();
    Q_INVOKABLE void endGesture();

  Q_SIGNALS:
    void changed();

  private:
    [[nodiscard]] EditState current() const;
    /// Restores the values of `to` wherever the two states differ.
    void restore(const EditState &from, const EditState &to);
    void restoreSound(const EditState &from, const EditState &to);
    void restorePresetGains(const EditState &from, const EditState &to);
    void restoreFavourites(const EditState &from, const EditState &to);
    void followPresets();

    AppState &state_;
    FavouritePresets &favourites_;
    Clock &clock_;
    EditHistory history_;
    PresetSnapshot userPresets_; ///< the current ones
};

} // namespace quorbel
