#include "ui/controls/AccessibleProbe.h"

#include "ui/controls/ContrastRatio.h"
#include "ui/dotmatrix/Appearance.h"
#include "ui/symbols/Symbols.h"

namespace quorbel {
namespace {

QAccessibleInterface *find(QQuickItem *item) {
    if (!item) {
        return nullptr;
    }
    // Any item can be asked; those that are nothing to assistive technology call themselves a
    // client area.
    auto *own = QAccessible::queryAccessibleInterface(item);
    if (own && own->role() != QAccessible::Client && own->role() != QAccessible::NoRole) {
        return own;
    }
    const auto children = item->childItems();
    for (auto *child : children) {
        if (auto *interface = find(child)) {
            return interface;
        }
    }
    return nullptr;
}

QAccessibleValueInterface *valueOf(QQuickItem *item) {
    auto *interface = find(item);
    return interface ? interface->valueInterface() : nullptr;
}

} // namespace

int AccessibleProbe::role(QQuickItem *item) const {
    auto *interface = find(item);
    return interface ? interface->role() : QAccessible::NoRole;
}

QString AccessibleProbe::name(QQuickItem *item) const {
    auto *interface = find(item);
    return interface ? interface->text(QAccessible::Name) : QString();
}

QString AccessibleProbe::description(QQuickItem *item) const {
    auto *interface = find(item);
    return interface ? interface->text(QAccessible::Description) : QString();
}

bool AccessibleProbe::checked(QQuickItem *item) const {
    auto *interface = find(item);
    return interface && interface->state().checked;
}

bool AccessibleProbe::focusable(QQuickItem *item) const {
    auto *interface = find(item);
    return interface && interface->state().focusable;
}

QVariant AccessibleProbe::value(QQuickItem *item) const {
    auto *value = valueOf(item);
    return value ? value->currentValue() : QVariant();
}

QVariant AccessibleProbe::minimum(QQuickItem *item) const {
    auto *value = valueOf(item);
    return value ? value->minimumValue() : QVariant();
}

QVariant AccessibleProbe::maximum(QQuickItem *item) const {
    auto *value = valueOf(item);
    return value ? value->maximumValue() : QVariant();
}

void AccessibleProbe::setValue(QQuickItem *item, const QVariant &value) const {
    if (auto *interface = valueOf(item)) {
        interface->setCurrentValue(value);
    }
}

QStringList AccessibleProbe::actions(QQuickItem *item) const {
    auto *interface = find(item);
    auto *actions = interface ? interface->actionInterface() : nullptr;
    return actions ? actions->actionNames() : QStringList();
}

void AccessibleProbe::act(QQuickItem *item, const QString &action) const {
    auto *interface = find(item);
    if (auto *actions = interface ? interface->actionInterface() : nullptr) {
        actions->doAction(action);
    }
}

QStringList AccessibleProbe::symbolNames() const { return symbols::names(); }

double AccessibleProbe::contrast(const QColor &one, const QColor &other) const {
    return contrastRatio(one, other);
}

void AccessibleProbe::setHighContrast(bool on) const { Appearance::instance().setHighContrast(on); }

void AccessibleProbe::setReducedMotion(bool on) const {
    Appearance::instance().setReducedMotion(on);
}

} // namespace quorbel
