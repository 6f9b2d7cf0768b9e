#pragma once

#include "remote/RemoteControl.h"

#include <QString>
#include <QVariant>

namespace quorbel {

/// Names of the D-Bus interface (see docs/MANUAL.md). The bus name differs from the window's,
/// because D-Bus activation would start the window.
namespace remote {
inline const QString service = QStringLiteral("com.quorbel.Ostrafine1");
inline const QString path = QStringLiteral("/com/quorbel/Ostrafine1");
inline const QString interface = QStringLiteral("com.quorbel.Ostrafine1");
inline const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
inline const QString refusedError = QStringLiteral("com.quorbel.Ostrafine1.Error.Refused");

/// Introspection of the interface; the library adds D-Bus's own interfaces.
extern const char *const introspection;
} // namespace remote

/// Names of `RemoteStatus::State`, as in the property State.
[[nodiscard]] QString stateName(RemoteStatus::State state);

/// Properties that are signalled.
[[nodiscard]] QVariantMap propertiesOf(const RemoteStatus &status);
/// The property Meters.
[[nodiscard]] QVariantMap metersOf(const RemoteControl &control);

/// Convert a setting's value from and to a D-Bus variant. Throws RemoteError for a type other than
/// boolean, number and text.
[[nodiscard]] SettingValue settingValueOf(const QVariant &variant);
[[nodiscard]] QVariant variantOf(const SettingValue &value);

} // namespace quorbel
