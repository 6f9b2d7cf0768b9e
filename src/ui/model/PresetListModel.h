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

/// Result of an import or an export, for QML.
struct ExchangeResult {
    Q_GADGET
    QML_VALUE_TYPE(exchangeResult)
    Q_PROPERTY(bool ok MEMBER ok)
    Q_PROPERTY(QString message MEMBER message)
    Q_PROPERTY(QStringList details MEMBER details)
    Q_PROPERTY(bool lacksGain MEMBER lacksGain)

  public:
    bool ok = false;        ///< true if everything succeeded
    QString message;        ///< result, or reason of the failure
    QStringList details;    ///< one line per file of several; rejected or limited lines and why
    bool lacksGain = false; ///< true if the applied preset's file has no gain
};

class FavouritePresets;
class HistoryModel;
class PresetFileChooser;

/// Presets, in list order, and the actions on them. Ids are text; unknown ids are ignored. [main]
class PresetListModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.presets is the only one")
    /// Name of the active preset, or "Custom" if the settings differ from it.
    Q_PROPERTY(QString activeName READ activeName NOTIFY activeNameChanged)
    /// Its row; -1 if no preset is active.
    Q_PROPERTY(int activeIndex READ activeIndex NOTIFY activeIndexChanged)
    /// Same presets for a combo box or menu.
    Q_PROPERTY(quorbel::PresetChoiceModel *choices READ choices CONSTANT)

  public:
    enum Role {
        presetIdRole = Qt::UserRole,
        nameRole,
        categoryTitleRole,
        notesRole,
        summaryRole,
        isUserRole,
        playingRole, ///< true for the active preset
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
    /// Applies the preset in `row`.
    Q_INVOKABLE void applyRow(int row);
    Q_INVOKABLE void setFavourite(const QString &id, bool isFavourite);

    /// Saves the current settings under `name`, trimmed of blanks at both ends.
    Q_INVOKABLE void save(const QString &name);
    [[nodiscard]] Q_INVOKABLE static bool canSave(const QString &name);
    /// Copies any preset to a user preset. Returns the copy's id.
    Q_INVOKABLE QString duplicate(const QString &id);

    // Restricted to user presets.
    Q_INVOKABLE void remove(const QString &id);
    /// Trims the name as `save` does.
    Q_INVOKABLE void rename(const QString &id, const QString &name);
    /// Replaces the preset's content with the current settings.
    Q_INVOKABLE void update(const QString &id);

    // PresetListExchange.cpp

    /// The chooser must outlive the last request. Null ignores requests.
    void setFileChooser(PresetFileChooser *chooser) { chooser_ = chooser; }
    /// Asks the user for files, then imports or exports them; `exchanged` follows unless the user
    /// cancels.
    Q_INVOKABLE void requestImport();
    Q_INVOKABLE void requestExport(const QString &id);
    /// Exports the current settings, as `save` would store them.
    Q_INVOKABLE void requestExportCurrent();
    /// Imports files dropped on the window; `exchanged` follows.
    Q_INVOKABLE void importDropped(const QList<QUrl> &urls);

    /// Imports parametric equaliser texts and preset files. Activates a single one, but none of
    /// several.
    ExchangeResult importFiles(const QStringList &paths);
    /// Writes the whole preset if the name ends in ".json", else a parametric equaliser text.
    [[nodiscard]] ExchangeResult exportPreset(const QString &id, const QString &path) const;

  Q_SIGNALS:
    void activeNameChanged();
    void activeIndexChanged();
    /// Emitted after a requested import or export has succeeded or failed.
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
