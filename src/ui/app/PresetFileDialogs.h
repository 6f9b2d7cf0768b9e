#pragma once

#include "ui/model/PresetFileChooser.h"

#include <QDir>
#include <QFileDialog>

#include <memory>

class QWindow;

namespace quorbel {

/// The desktop's file dialogs over the program's window; Qt's own where the desktop has none. One
/// at a time: while one is open, a further request only shows it again. [main]
class PresetFileDialogs final : public PresetFileChooser {
  public:
    /// The window must outlive it.
    explicit PresetFileDialogs(QWindow &window);
    ~PresetFileDialogs() override;

    void chooseImport(FilesChosen chosen) override;
    void chooseExport(const QString &suggestedName, FileChosen chosen) override;

  private:
    /// Null while another one is open.
    QFileDialog *make(const QString &title, QFileDialog::AcceptMode mode);
    void show(QFileDialog &dialog, FilesChosen chosen);

    QWindow &window_;
    QDir folder_;                         ///< of the last files chosen; the documents at first
    std::unique_ptr<QFileDialog> dialog_; ///< the last one, open or closed
};

} // namespace quorbel
