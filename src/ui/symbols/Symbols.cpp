#include "ui/symbols/Symbols.h"

#include <QDir>

namespace quorbel::symbols {
namespace {

const auto folder = QStringLiteral(":/quorbel/symbols");
const auto suffix = QStringLiteral(".svg");

} // namespace

QString path(const QString &name) { return folder + QLatin1Char('/') + name + suffix; }

QStringList names() {
    QStringList found;
    for (const QString &file : QDir(folder).entryList({QLatin1Char('*') + suffix}, QDir::Files))
        found << file.chopped(suffix.size());
    return found;
}

} // namespace quorbel::symbols
