#pragma once

#include "settings/state/AppState.h"
#include "ui/model/RecordListModel.h"

#include <QString>

#include <vector>

namespace quorbel {

class FavouritePresets;

/// Presets for a combo box or menu, in groups: favourites, user presets, then the library by
/// category. Each preset is in one group. [main]
class PresetChoiceModel final : public quorbel::RecordListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.presets.choices is the only one")
    /// Row of the active preset; -1 if none is active.
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)
    /// True if the settings still equal that preset's.
    Q_PROPERTY(bool currentUnchanged READ isCurrentUnchanged NOTIFY currentChanged)

  public:
    enum Role { presetIdRole = Qt::UserRole, nameRole, groupRole };

    struct Choice {
        QString id;
        QString name;
        QString group;
    };

    PresetChoiceModel(AppState &state, FavouritePresets &favourites, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const std::vector<Choice> &choices() const { return choices_; }
    [[nodiscard]] int currentIndex() const { return currentIndex_; }
    [[nodiscard]] bool isCurrentUnchanged() const { return isCurrentUnchanged_; }

  Q_SIGNALS:
    void currentChanged();
    void choicesChanged();

  private:
    [[nodiscard]] std::vector<Choice> currentChoices() const;
    void followPresets();
    void followActive();

    AppState &state_;
    FavouritePresets &favourites_;
    std::vector<Choice> choices_; ///< as shown
    int currentIndex_ = -1;
    bool isCurrentUnchanged_ = false;
};

} // namespace quorbel
