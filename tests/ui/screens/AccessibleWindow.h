#pragma once

#include "ui/app/simulated/Stage.h"

#include <QObject>
#include <QQuickWindow>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace quorbel::testing {

/// Reads and operates a window through its accessibility interfaces alone. Knows visible objects by
/// their accessible names. The singleton `Assistive` in QML. [main]
class AccessibleWindow final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QQuickWindow *window MEMBER window_)

  public:
    AccessibleWindow();

    /// All visible objects in reading order: `{role, name, description, value, checked, enabled,
    /// focusable, focused, selected}`.
    [[nodiscard]] Q_INVOKABLE QVariantList all() const;
    /// Names of all objects with the role ("Button", "Slider", "CheckBox", …); empty: any role.
    [[nodiscard]] Q_INVOKABLE QStringList names(const QString &role = {}) const;
    /// First object with the name (and role, unless empty); an empty map if there is none.
    [[nodiscard]] Q_INVOKABLE QVariantMap find(const QString &name, const QString &role = {}) const;
    [[nodiscard]] Q_INVOKABLE bool has(const QString &name, const QString &role = {}) const {
        return !find(name, role).isEmpty();
    }

    /// Return false if the object is missing or refuses.
    Q_INVOKABLE bool press(const QString &name, const QString &role = {});
    Q_INVOKABLE bool act(const QString &name, const QString &action, const QString &role = {});
    Q_INVOKABLE bool setValue(const QString &name, double value);
    Q_INVOKABLE bool focus(const QString &name, const QString &role = {});
    /// Presses or releases a key of any layout: `key` is Qt's code, `scanCode` its position.
    Q_INVOKABLE void sendKey(int key, int modifiers, int scanCode, bool isDown);
    /// Sends the repeat events of a held key.
    Q_INVOKABLE void repeatKey(int key);
    Q_INVOKABLE void settle() { simulated::settleLayout(*window_); }
    /// The item for pointer events; null if missing.
    [[nodiscard]] Q_INVOKABLE QQuickItem *item(const QString &name, const QString &role) const;

    /// Drags files over the window and drops them in its middle. Returns false if it takes none.
    Q_INVOKABLE bool drop(const QStringList &paths);

    /// Visible texts that are not shown as plain text.
    [[nodiscard]] Q_INVOKABLE QStringList textsReadAsMarkup() const;

  private:
    QQuickWindow *window_ = nullptr;
};

} // namespace quorbel::testing
