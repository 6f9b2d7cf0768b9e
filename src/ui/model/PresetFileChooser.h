#pragma once

#include <QString>

#include <functional>

namespace quorbel {

/// Asks the user for the file of an import or an export. Both calls return at once; `chosen` is
/// called later with the file's path, or never if the user cancels. [main]
class PresetFileChooser {
  public:
    using Chosen = std::function<void(const QString &path)>;

    PresetFileChooser() = default;
    virtual ~PresetFileChooser() = default;
    PresetFileChooser(const PresetFileChooser &) = delete;
    PresetFileChooser &operator=(const PresetFileChooser &) = delete;

    /// A file that exists.
    virtual void chooseImport(Chosen chosen) = 0;
    /// A file to write; the user has agreed to replace it if it exists. `suggestedName` is its
    /// first name, without folder and extension.
    virtual void chooseExport(const QString &suggestedName, Chosen chosen) = 0;
};

} // namespace quorbel
