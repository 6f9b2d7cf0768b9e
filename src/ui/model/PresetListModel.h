#pragma once

#include "settings/state/AppState.h"
#include "ui/model/PresetChoiceModel.h"
#include "ui/model/RecordListModel.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// The result of an import or an export, for QML.
struct ExchangeResult {
    Q_GADGET
    QML_VALUE_TYPE(exchangeResult)
    Q_PROPERTY(bool ok MEMBER ok)
    Q_PROPERTY(QString message MEMBER message)
    Q_PROPERTY(QStringList details MEMBER details)
    Q_PROPERTY(bool lacksGain MEMBER lacksGain)

  public:
    bool ok = false; ///< everything that was asked for has been done
    QString message; ///< the result, or why there is none
    QStringList
        details; ///< one line per file of several; lines that were not taken as written, and why
    bool lacksGain = false; ///< a preset was applied whose file says nothing about its gain
};

class FavouritePresets;
class HistoryModel;
class PresetFileChooser;

/// The presets, in list order, and the actions on them. Presets are named by their ids, as text; an
/// id that none has is ignored. [main]
class PresetListModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.presets is the only one")
    /// The active preset's name, or "Custom" where the settings are no longer its own.
    Q_PROPERTY(QString activeName READ activeName NOTIFY activeNameChanged)
    /// Its row; -1 where no preset is active.
    Q_PROPERTY(int activeIndex READ activeIndex NOTIFY activeIndexChanged)
    /// The same presets as a box or menu offers them.
    Q_PROPERTY(quorbel::PresetChoiceModel *choices READ choices CONSTANT)

  public:
    enum Role {
        presetIdRole = Qt::UserRole,
        nameRole,
        categoryTitleRole,
        notesRole,
        summaryRole,
        isUserRole,
        playingRole, ///< whether it is the active one
        favouriteRole,
    };

    PresetListModel(AppState &state, FavouritePresets &favourites, HistoryModel &history,
                    QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString activeName() const { return activeName_; }
    [[nodiscard]] int activeIndex() const;
    [[nodiscard]] PresetChoiceModel *choices() { return &choices_; }
    [[nodiscard]] const std::vector<Preset> &presets() const { return presets_; }

    Q_INVOKABLE void apply(const QString &id);
    /// The preset in this row.
    Q_INVOKABLE void applyRow(int row);
    Q_INVOKABLE void setFavourite(const QString &id, bool isFavourite);

    /// Saves the current settings under the name, without blanks at its ends.
    Q_INVOKABLE void save(const QString &name);
    [[nodiscard]] Q_INVOKABLE static bool canSave(const QString &name);
    /// Makes a preset of the user's of any preset. Returns its id.
    Q_INVOKABLE QString duplicate(const QString &id);

    // Factory presets stay as they are.
    Q_INVOKABLE void remove(const QString &id);
    /// The same rule for the name as in `save`.
    Q_INVOKABLE void rename(const QString &id, const QString &name);
    /// Replaces the preset's content with the current settings.
    Q_INVOKABLE void update(const QString &id);

    // PresetListExchange.cpp

    /// The chooser must outlive the last request. Null: requests are ignored.
    void setFileChooser(PresetFileChooser *chooser) { chooser_ = chooser; }
    /// Ask the user for files, then import or export them; `exchanged` follows unless the user
    /// cancels.
    Q_INVOKABLE void requestImport();
    Q_INVOKABLE void requestExport(const QString &id);
    /// The current settings, as `save` would take them.
    Q_INVOKABLE void requestExportCurrent();
    /// Imports files dropped on the window; `exchanged` follows.
    Q_INVOKABLE void importDropped(const QList<QUrl> &urls);

    /// Makes presets of parametric equaliser texts and preset files. A single one becomes the
    /// active one; of several none does.
    ExchangeResult importFiles(const QStringList &paths);
    /// Writes a preset, whole where the name ends in ".json", else as a parametric equaliser text.
    [[nodiscard]] ExchangeResult exportPreset(const QString &id, const QString &path) const;

  Q_SIGNALS:
    void activeNameChanged();
    void activeIndexChanged();
    /// A requested import or export has been done, or could not be.
    void exchanged(const quorbel::ExchangeResult &result);

  private:
    void followPresets();
    void followActive();
    void updateActiveName();
    [[nodiscard]] const Preset *find(const QString &id) const;
    [[nodiscard]] const Preset *findOwn(const QString &id) const;
    ExchangeResult importOne(const QString &path);

    AppState &state_;
    FavouritePresets &favourites_;
    HistoryModel &history_;
    PresetChoiceModel choices_;
    PresetFileChooser *chooser_ = nullptr;
    std::vector<Preset> presets_; ///< as shown
    QString activeName_;
};

} // namespace quorbel
