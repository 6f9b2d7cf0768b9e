#pragma once

#include "settings/state/AppState.h"
#include "ui/logic/Destinatie.h"

#include <QAbstractListModel>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// The sidebar: the destinations in the order of their groups, with their badges. [main]
class NavigationModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("App.navigation is the only one")
    Q_PROPERTY(int count READ count CONSTANT)

  public:
    enum Role {
        rawValueRole = Qt::UserRole,
        titleRole,
        symbolRole,
        badgeRole,       ///< empty where there is none
        groupRole,       ///< the group's title
        startsGroupRole, ///< whether the row is the first of its group
    };

    NavigationModel(AppState &state, QObject *parent);

    [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Of the destination with this raw value; -1 or empty where there is none.
    [[nodiscard]] Q_INVOKABLE int indexOf(const QString &rawValue) const;
    [[nodiscard]] Q_INVOKABLE QString titleOf(const QString &rawValue) const;

  private:
    struct Row {
        Destinatie destination;
        std::string_view group;
        bool startsGroup;
    };

    void updateBadges();

    AppState &state_;
    std::vector<Row> rows_;
    std::vector<QString> badges_; ///< as shown, by row
};

} // namespace quorbel
