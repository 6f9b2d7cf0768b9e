#include "ui/model/EngineTexts.h"

#include <QCoreApplication>

namespace quorbel {

namespace {

/// The engine's texts that speak of the operating system, with %1 for a number in them.
constexpr const char *reworded[] = {
    QT_TRANSLATE_NOOP(
        "quorbel::engine",
        "Couldn't start system audio capture (OSStatus %1). If you denied the "
        "permission prompt, enable Quorbel under System Settings → Privacy & Security "
        "→ Screen & System Audio Recording, then try again."),
};

} // namespace

QString shownError(const std::string &message) {
    const QString text = QString::fromStdString(message);
    for (const char *pattern : reworded) {
        const QStringList parts = QString::fromUtf8(pattern).split(QStringLiteral("%1"));
        if (!text.startsWith(parts.first()) || !text.endsWith(parts.last()))
            continue;
        const auto length = text.size() - parts.first().size() - parts.last().size();
        if (length >= 0)
            return QCoreApplication::translate("quorbel::engine", pattern)
                .arg(text.mid(parts.first().size(), length));
    }
    return text;
}

} // namespace quorbel
