#pragma once

#include "settings/state/AppState.h"
#include "ui/model/ExchangeResult.h"
#include "ui/model/RecordListModel.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace quorbel {

class HistoryModel;
class PresetFileChooser;

/// The presets, in list order, and what can be done with them. Presets are named by their ids, as
/// text; an id that none has is ignored. [main]
class PresetListModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.presets is the only one")
    /// The active preset's name, or "Custom" where the settings are no longer its own.
    Q_PROPERTY(QString activeName READ activeName NOTIFY activeNameChanged)
    /// Its row; -1 where no preset is active.
    Q_PROPERTY(int activeIndex READ activeIndex NOTIFY activeIndexChanged)
    Q_PROPERTY(QStringList names READ names NOTIFY namesChanged)

  public:
    enum Role {
        presetIdRole = Qt::UserRole,
        nameRole,
        categoryTitleRole,
        notesRole,
        summaryRole,
        isUserRole,
        playingRole, ///< whether it is the active one
    };

    PresetListModel(AppState &state, HistoryModel &history, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString activeName() const { return activeName_; }
    [[nodiscard]] int activeIndex() const;
    [[nodiscard]] QStringList names() const;
    [[nodiscard]] const std::vector<Preset> &presets() const { return presets_; }

    Q_INVOKABLE void apply(const QString &id);
    /// The preset in this row.
    Q_INVOKABLE void applyRow(int row);
    /// Factory presets stay.
    Q_INVOKABLE void remove(const QString &id);
    /// Saves the current settings under the name, without blanks at its ends.
    Q_INVOKABLE void save(const QString &name);
    [[nodiscard]] Q_INVOKABLE static bool canSave(const QString &name);

    /// The chooser must outlive the last request. Null: requests are ignored.
    void setFileChooser(PresetFileChooser *chooser) { chooser_ = chooser; }
    /// Ask the user for a file, then import or export it; `exchanged` follows unless the user
    /// cancels.
    Q_INVOKABLE void requestImport();
    Q_INVOKABLE void requestExport(const QString &id);

    /// Makes a preset of a parametric equaliser text or a preset file, and the active one.
    ExchangeResult importFile(const QString &path);
    /// Writes a preset, whole where the name ends in ".json", else as a parametric equaliser text.
    [[nodiscard]] ExchangeResult exportPreset(const QString &id, const QString &path) const;

  Q_SIGNALS:
    void activeNameChanged();
    void activeIndexChanged();
    void namesChanged();
    /// A requested import or export has been done, or could not be.
    void exchanged(const quorbel::ExchangeResult &result);

  private:
    void followPresets();
    void followActive();
    void updateActiveName();
    [[nodiscard]] const Preset *find(const QString &id) const;

    AppState &state_;
    HistoryModel &history_;
    PresetFileChooser *chooser_ = nullptr;
    std::vector<Preset> presets_; ///< as shown
    QString activeName_;
};

} // namespace quorbel
