#pragma once

#include "remote/RemoteControl.h"

#include <QString>
#include <QVariant>

namespace quorbel {

/// Names of the D-Bus interface (docs/MANUAL.md describes it). The bus name is another than the
/// window's, which D-Bus activation would start.
namespace remote {
inline const QString service = QStringLiteral("com.quorbel.Ostrafine1");
inline const QString path = QStringLiteral("/com/quorbel/Ostrafine1");
inline const QString interface = QStringLiteral("com.quorbel.Ostrafine1");
inline const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
inline const QString refusedError = QStringLiteral("com.quorbel.Ostrafine1.Error.Refused");

/// The interface as introspection describes it; the library adds those of D-Bus.
extern const char *const introspection;
} // namespace remote

/// Names of `RemoteStatus::State`, as in the property State.
[[nodiscard]] QString stateName(RemoteStatus::State state);

/// The signalled properties.
[[nodiscard]] QVariantMap propertiesOf(const RemoteStatus &status);
/// The property Meters.
[[nodiscard]] QVariantMap metersOf(const RemoteControl &control);

/// A setting's value from and to a D-Bus variant. Throws RemoteError for a type that is no boolean,
/// number or text.
[[nodiscard]] SettingValue settingValueOf(const QVariant &variant);
[[nodiscard]] QVariant variantOf(const SettingValue &value);

} // namespace quorbel
