#include "ui/model/SearchText.h"

#include <QStringList>

#include <algorithm>

namespace quorbel {

namespace {

/// Without accents and case: letters decomposed, their marks left out. Upper case because it has
/// one form for "ß" and "ss".
QString folded(const QString &text) {
    QString letters = text.normalized(QString::NormalizationForm_KD);
    letters.removeIf([](QChar letter) { return letter.isMark(); });
    return letters.toUpper();
}

} // namespace

bool matchesSearch(const QString &text, const QString &search) {
    const QStringList words = folded(search).simplified().split(u' ', Qt::SkipEmptyParts);
    const QString all = folded(text);
    return std::ranges::all_of(words, [&](const QString &word) { return all.contains(word); });
}

} // namespace quorbel
