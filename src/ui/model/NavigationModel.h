#pragma once

#include "settings/state/AppState.h"
#include "ui/logic/Destinatie.h"

#include <QAbstractListModel>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace quorbel {

/// Destinations of the sidebar with their badges, ordered by group. [main]
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
        badgeRole,       ///< empty if there is none
        groupRole,       ///< the group's title
        startsGroupRole, ///< true for the first row of a group
    };

    NavigationModel(AppState &state, QObject *parent);

    [[nodiscard]] int count() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Row and title of the destination with this raw value; -1 or empty for none.
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
