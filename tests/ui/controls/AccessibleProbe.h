#pragma once

#include <QAccessible>
#include <QColor>
#include <QObject>
#include <QQuickItem>
#include <QStringList>
#include <QVariant>

namespace quorbel {

/// What assistive technology sees of an item, and what it can do with it. An item that is nothing
/// to it stands for the first of its descendants that is something.
class AccessibleProbe : public QObject {
    Q_OBJECT

  public:
    Q_INVOKABLE int role(QQuickItem *item) const;
    Q_INVOKABLE QString name(QQuickItem *item) const;
    Q_INVOKABLE QString description(QQuickItem *item) const;
    Q_INVOKABLE bool checked(QQuickItem *item) const;
    Q_INVOKABLE bool focusable(QQuickItem *item) const;

    Q_INVOKABLE QVariant value(QQuickItem *item) const;
    Q_INVOKABLE QVariant minimum(QQuickItem *item) const;
    Q_INVOKABLE QVariant maximum(QQuickItem *item) const;
    Q_INVOKABLE void setValue(QQuickItem *item, const QVariant &value) const;

    Q_INVOKABLE QStringList actions(QQuickItem *item) const;
    Q_INVOKABLE void act(QQuickItem *item, const QString &action) const;

    /// All that `Symbol` can show.
    Q_INVOKABLE QStringList symbolNames() const;

    /// WCAG's contrast ratio, 1 to 21.
    Q_INVOKABLE double contrast(const QColor &one, const QColor &other) const;

    Q_INVOKABLE void setHighContrast(bool on) const;
    Q_INVOKABLE void setReducedMotion(bool on) const;
};

} // namespace quorbel
