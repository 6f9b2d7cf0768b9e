#pragma once

#include <QString>
#include <QStringList>

namespace quorbel::symbols {

/// Resource path of the symbol of this name, whether or not there is one.
[[nodiscard]] QString path(const QString &name);

/// All symbols' names, sorted.
[[nodiscard]] QStringList names();

} // namespace quorbel::symbols
