#pragma once

#include <QTranslator>

namespace quorbel {

/// The wording of a few texts on Linux. Sources keep the texts as they are everywhere; this
/// catalogue, installed as a translator, replaces those that would be untrue here.
///
/// A text is looked up by itself: the context of `qsTr`, `tr` or `translate` (a file or a class)
/// does not count. So a text may move between files.
class LinuxWording final : public QTranslator {
  public:
    explicit LinuxWording(QObject *parent = nullptr);

    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *text,
                                    const char *disambiguation, int count) const override;
};

} // namespace quorbel
