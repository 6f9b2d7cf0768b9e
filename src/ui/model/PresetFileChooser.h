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

    /// One or several files that exist.
    virtual void chooseImport(FilesChosen chosen) = 0;
    /// A file to write; the user has agreed to replace it if it exists. `suggestedName` is its
    /// first name, without folder and extension.
    virtual void chooseExport(const QString &suggestedName, FileChosen chosen) = 0;
};

} // namespace quorbel
