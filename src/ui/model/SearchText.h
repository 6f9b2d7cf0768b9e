#pragma once

#include <QString>

namespace quorbel {

/// Whether each word of `search` occurs in `text`, whatever the case and without regard to accents:
/// "cafe RAD" occurs in "Café, Radio". No word occurs everywhere.
[[nodiscard]] bool matchesSearch(const QString &text, const QString &search);

} // namespace quorbel
