#pragma once

#include <QTranslator>

namespace quorbel {

/// Translator for the few texts that would be untrue on Linux. The sources keep the wording that
/// all systems share.
///
/// Looks texts up without the context of `qsTr`, `tr` or `translate` (a file or a class), so that a
/// text may move between files.
class LinuxWording final : public QTranslator {
  public:
    explicit LinuxWording(QObject *parent = nullptr);

    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *text,
                                    const char *disambiguation, int count) const override;
};

} // namespace quorbel
