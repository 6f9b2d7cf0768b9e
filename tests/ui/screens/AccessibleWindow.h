#pragma once

#include "ui/app/simulated/Stage.h"

#include <QObject>
#include <QQuickWindow>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace quorbel::testing {

/// A window as assistive technology meets it: what is there is read, operated and typed into
/// through the accessibility interfaces alone. Things are named by their accessible names; what is
/// not shown is not there. To QML it is the singleton `Assistive`. [main]
class AccessibleWindow final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QQuickWindow *window MEMBER window_)

  public:
    AccessibleWindow();

    /// Everything shown, in reading order: `{role, name, description, value, checked, enabled,
    /// focusable, focused, selected}`.
    [[nodiscard]] Q_INVOKABLE QVariantList all() const;
    /// The names of everything of that role ("Button", "Slider", "CheckBox", …), or of any.
    [[nodiscard]] Q_INVOKABLE QStringList names(const QString &role = {}) const;
    /// The first of that name (and role, unless empty); an empty object where there is none.
    [[nodiscard]] Q_INVOKABLE QVariantMap find(const QString &name, const QString &role = {}) const;
    [[nodiscard]] Q_INVOKABLE bool has(const QString &name, const QString &role = {}) const {
        return !find(name, role).isEmpty();
    }

    /// False where it is not there or cannot be done.
    Q_INVOKABLE bool press(const QString &name, const QString &role = {});
    Q_INVOKABLE bool act(const QString &name, const QString &action, const QString &role = {});
    Q_INVOKABLE bool setValue(const QString &name, double value);
    Q_INVOKABLE bool focus(const QString &name, const QString &role = {});
    /// A key of any layout, pressed or let go of: `key` is Qt's code and `scanCode` its place.
    Q_INVOKABLE void sendKey(int key, int modifiers, int scanCode, bool isDown);
    /// The events of a key that stays down.
    Q_INVOKABLE void repeatKey(int key);
    Q_INVOKABLE void settle() { simulated::settleLayout(*window_); }
    /// For the pointer; null where it is not there.
    [[nodiscard]] Q_INVOKABLE QQuickItem *item(const QString &name, const QString &role) const;

    /// Files are dragged over the window and dropped in its middle. False where it takes none.
    Q_INVOKABLE bool drop(const QStringList &paths);

    /// Texts that would be read as markup, if they had any.
    [[nodiscard]] Q_INVOKABLE QStringList textsReadAsMarkup() const;

  private:
    QQuickWindow *window_ = nullptr;
};

} // namespace quorbel::testing
