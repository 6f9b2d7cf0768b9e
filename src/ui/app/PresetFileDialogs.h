#pragma once

#include "ui/model/PresetFileChooser.h"

#include <QDir>
#include <QFileDialog>

#include <memory>

class QWindow;

namespace quorbel {

/// File dialogs of the desktop, or Qt's own if it has none, over the program's window. A further
/// request only raises the dialog that is open. [main]
class PresetFileDialogs final : public PresetFileChooser {
  public:
    /// The window must outlive it.
    explicit PresetFileDialogs(QWindow &window);
    ~PresetFileDialogs() override;

    void chooseImport(FilesChosen chosen) override;
    void chooseExport(const QString &suggestedName, FileChosen chosen) override;

  private:
    /// Raises the open dialog and returns null if there is one.
    QFileDialog *make(const QString &title, QFileDialog::AcceptMode mode);
    void show(QFileDialog &dialog, FilesChosen chosen);

    QWindow &window_;
    QDir folder_;                         ///< of the last chosen files; initially the documents
    std::unique_ptr<QFileDialog> dialog_; ///< the last one, open or closed
};

} // namespace quorbel
