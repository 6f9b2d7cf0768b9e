// Import and export of presets.

#include "settings/interchange/PresetFile.h"
#include "ui/logic/PresetTexts.h"
#include "ui/model/HistoryModel.h"
#include "ui/model/PresetFileChooser.h"
#include "ui/model/PresetListModel.h"
#include "ui/model/UserPresets.h"

#include <QFileInfo>

#include <stdexcept>
#include <utility>

namespace quorbel {

namespace {

/// Maximum number of detail lines, so that the message leaves room for the window.
constexpr qsizetype maximumDetails = 20;

QStringList notesOf(const ImportedPreset &imported, const QString &prefix = {}) {
    QStringList lines;
    for (const auto *notes : {&imported.skipped, &imported.limited})
        for (const LineNote &note : *notes)
            lines << prefix + PresetListModel::tr("line %1: %2")
                                  .arg(note.line)
                                  .arg(QString::fromUtf8(note.reason));
    return lines;
}

QStringList shortened(QStringList lines) {
    const qsizetype more = lines.size() - maximumDetails;
    if (more <= 0)
        return lines;
    lines.resize(maximumDetails);
    return lines << PresetListModel::tr("and %1 more").arg(more);
}

ExchangeResult done(const QString &what, const QStringList &details = {}) {
    ExchangeResult result;
    result.ok = true;
    result.message = what;
    result.details = shortened(details);
    return result;
}

ExchangeResult failed(const QString &why) {
    ExchangeResult result;
    result.message = why;
    return result;
}

/// Returns the file's name and the reason why it could not be read or written.
QString failureText(const QString &path, const std::exception &error) {
    return QFileInfo(path).fileName() + ": " + QString::fromUtf8(error.what());
}

QString summaryOf(const ImportedPreset &imported) {
    const QString summary = QString::fromUtf8(imported.summary);
    return imported.fitSummary.empty() ? summary
                                       : summary + ", " + QString::fromUtf8(imported.fitSummary);
}

ExchangeResult write(const Preset &preset, float gainDB, const QString &path) {
    try {
        const std::string loss = writePreset(path.toStdString(), preset, gainDB);
        return done(PresetListModel::tr("%1 was written to %2")
                        .arg(QString::fromUtf8(preset.name), QFileInfo(path).fileName()),
                    loss.empty() ? QStringList() : QStringList(QString::fromStdString(loss)));
    } catch (const std::runtime_error &error) {
        return failed(failureText(path, error));
    }
}

/// Result of an import of several files.
struct ImportedFiles {
    std::vector<Preset> presets;
    std::vector<std::pair<Uuid, float>> gainsDB; ///< of presets that have one
    QStringList refused;                         ///< one line each, as below
    QStringList taken;
    QStringList notes;

    void read(const QString &path) {
        try {
            ImportedPreset imported = readPreset(path.toStdString());
            const QString name = QString::fromUtf8(imported.preset.name);
            taken << summaryOf(imported);
            notes << notesOf(imported, name + ", ");
            if (imported.gainDB)
                gainsDB.emplace_back(imported.preset.id, *imported.gainDB);
            presets.push_back(std::move(imported.preset));
        } catch (const std::runtime_error &error) {
            refused << failureText(path, error);
        }
    }
    [[nodiscard]] ExchangeResult result() const {
        ExchangeResult result = done({}, refused + taken + notes);
        result.ok = refused.empty();
        if (taken.empty())
            result.message =
                PresetListModel::tr("None of the %1 files was imported.").arg(refused.size());
        else if (refused.empty())
            result.message = PresetListModel::tr("%1 presets were imported.").arg(taken.size());
        else
            result.message = PresetListModel::tr("%1 of %2 files were imported.")
                                 .arg(taken.size())
                                 .arg(taken.size() + refused.size());
        return result;
    }
};

} // namespace

void PresetListModel::requestImport() {
    if (chooser_ != nullptr)
        chooser_->chooseImport(
            [this](const QStringList &paths) { Q_EMIT exchanged(importFiles(paths)); });
}

void PresetListModel::requestExport(const QString &id) {
    const Preset *preset = find(id);
    if (chooser_ != nullptr && preset != nullptr)
        chooser_->chooseExport(
            QString::fromUtf8(fileNameFor(preset->name)),
            [this, id](const QString &path) { Q_EMIT exchanged(exportPreset(id, path)); });
}

void PresetListModel::requestExportCurrent() {
    if (chooser_ == nullptr)
        return;
    AudioEngine &engine = state_.engine();
    Preset current{.id = Uuid::random(),
                   .name = activeName_.toStdString(),
                   .createdAt = Date::now(),
                   .bands = engine.eq().bands(),
                   .spatial = engine.spatial()};
    const float gainDB = engine.eq().totalGainDB();
    const QString suggestion = QString::fromUtf8(fileNameFor(current.name));
    chooser_->chooseExport(suggestion,
                           [this, current = std::move(current), gainDB](const QString &path) {
                               Preset named = current;
                               named.name = QFileInfo(path).completeBaseName().toStdString();
                               Q_EMIT exchanged(write(named, gainDB, path));
                           });
}

void PresetListModel::importDropped(const QList<QUrl> &urls) {
    QStringList paths;
    QStringList elsewhere;
    for (const QUrl &url : urls)
        if (url.isLocalFile())
            paths << url.toLocalFile();
        else
            elsewhere << url.toDisplayString();
    if (!elsewhere.empty())
        Q_EMIT exchanged(failed(
            tr("Only files of this computer can be imported, not %1.").arg(elsewhere.first())));
    else if (!paths.empty())
        Q_EMIT exchanged(importFiles(paths));
}

ExchangeResult PresetListModel::importFiles(const QStringList &paths) {
    if (paths.size() == 1)
        return importOne(paths.first());
    ImportedFiles files;
    for (const QString &path : paths)
        files.read(path);
    if (!files.presets.empty())
        history_.edit(tr("Import %1 presets").arg(files.presets.size()), "import", [&] {
            for (const auto &[id, gainDB] : files.gainsDB)
                state_.setPresetGainDB(id, gainDB);
            addPresets(state_, files.presets);
        });
    return files.result();
}

ExchangeResult PresetListModel::importOne(const QString &path) {
    try {
        const ImportedPreset imported = readPreset(path.toStdString());
        history_.edit(tr("Import %1").arg(QString::fromUtf8(imported.preset.name)), "import", [&] {
            state_.setPresetGainDB(imported.preset.id, imported.gainDB.value_or(0.0F));
            adoptPreset(state_, imported.preset);
        });
        ExchangeResult result = done(summaryOf(imported), notesOf(imported));
        result.lacksGain = !imported.gainDB;
        return result;
    } catch (const std::runtime_error &error) {
        return failed(failureText(path, error));
    }
}

ExchangeResult PresetListModel::exportPreset(const QString &id, const QString &path) const {
    const Preset *preset = find(id);
    if (preset == nullptr)
        return failed(tr("This preset is no longer there."));
    return write(*preset, state_.presetGains().of(preset->id), path);
}

} // namespace quorbel
