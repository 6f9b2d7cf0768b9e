#include "ui/app/PresetFileDialogs.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <QWindow>

#include <utility>

namespace quorbel {

namespace {

QString text(const char *source) {
    return QCoreApplication::translate("quorbel::PresetFileDialogs", source);
}

/// Returns the documents folder, or the home folder if a new user has none yet.
QDir documents() {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    return folder.exists() ? folder : QDir::home();
}

/// Returns "txt" for "Equalizer text (*.txt)".
QString extensionOf(const QString &filter) {
    return filter.section(QStringLiteral("*."), 1).section(')', 0, 0);
}

} // namespace

PresetFileDialogs::PresetFileDialogs(QWindow &window) : window_(window), folder_(documents()) {}

PresetFileDialogs::~PresetFileDialogs() = default;

void PresetFileDialogs::chooseImport(FilesChosen chosen) {
    QFileDialog *dialog = make(text("Import presets"), QFileDialog::AcceptOpen);
    if (dialog == nullptr)
        return;
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(
        {text("Presets and equalizer texts (*.json *.txt)"), text("All files (*)")});
    show(*dialog, std::move(chosen));
}

void PresetFileDialogs::chooseExport(const QString &suggestedName, FileChosen chosen) {
    QFileDialog *dialog = make(text("Export a preset"), QFileDialog::AcceptSave);
    if (dialog == nullptr)
        return;
    const QStringList filters = {text("Preset (*.json)"), text("Equalizer text (*.txt)")};
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setNameFilters(filters);
    const auto followFilter = [dialog](const QString &filter) {
        dialog->setDefaultSuffix(extensionOf(filter));
    };
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog, followFilter);
    followFilter(filters.first());
    dialog->selectFile(suggestedName + '.' + extensionOf(filters.first()));
    show(*dialog,
         [chosen = std::move(chosen)](const QStringList &paths) { chosen(paths.first()); });
}

QFileDialog *PresetFileDialogs::make(const QString &title, QFileDialog::AcceptMode mode) {
    if (dialog_ && dialog_->isVisible()) {
        dialog_->raise();
        dialog_->activateWindow();
        return nullptr;
    }
    dialog_ = std::make_unique<QFileDialog>(nullptr, title,
                                            folder_.exists() ? folder_.path() : QDir::homePath());
    dialog_->setAcceptMode(mode);
    return dialog_.get();
}

void PresetFileDialogs::show(QFileDialog &dialog, FilesChosen chosen) {
    QObject::connect(&dialog, &QFileDialog::filesSelected, &dialog,
                     [this, chosen = std::move(chosen)](const QStringList &paths) {
                         folder_ = dialog_->directory();
                         if (!paths.empty())
                             chosen(paths);
                     });
    // The window is no QWidget: only its handle can be the dialog's parent.
    dialog.winId();
    dialog.windowHandle()->setTransientParent(&window_);
    dialog.open();
    // Takes the focus if the window manager is missing or does not give it.
    if (dialog.windowHandle()->isVisible())
        dialog.activateWindow();
}

} // namespace quorbel
