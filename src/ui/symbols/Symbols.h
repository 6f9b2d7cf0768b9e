#pragma once

#include <QString>
#include <QStringList>

namespace quorbel::symbols {

/// Where the symbol of this name is found, as a resource path; there need not be one.
QString path(const QString &name);

/// All symbols' names, sorted.
QStringList names();

} // namespace quorbel::symbols
