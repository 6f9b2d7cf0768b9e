#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace quorbel {

/// Asks the user for the files of an import or the file of an export. Both calls return at once;
/// `chosen` is called later with the paths, or never if the user cancels. [main]
class PresetFileChooser {
  public:
    using FilesChosen = std::function<void(const QStringList &paths)>;
    using FileChosen = std::function<void(const QString &path)>;

    PresetFileChooser() = default;
    virtual ~PresetFileChooser() = default;
    PresetFileChooser(const PresetFileChooser &) = delete;
    PresetFileChooser &operator=(const PresetFileChooser &) = delete;

    /// Asks for one or several existing files.
    virtual void chooseImport(FilesChosen chosen) = 0;
    /// Asks for a file to write; the user has agreed to replace an existing one. `suggestedName`
    /// has no folder and no extension.
    virtual void chooseExport(const QString &suggestedName, FileChosen chosen) = 0;
};

} // namespace quorbel
