#pragma once

#include "ui/logic/PresetTexts.h"

#include <QSortFilterProxyModel>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// The presets of one destination of the sidebar: `App.presets`, filtered, with the same roles.
/// (Not final: QML makes it through a class derived from it.) [main]
class PresetFilterModel : public QSortFilterProxyModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Filter filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(QString title READ title NOTIFY filterChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    enum Filter { All, Factory, Mine };
    Q_ENUM(Filter)

    explicit PresetFilterModel(QObject *parent = nullptr);

    [[nodiscard]] Filter filter() const { return filter_; }
    void setFilter(Filter filter);
    [[nodiscard]] QString title() const;
    [[nodiscard]] int count() const { return rowCount(); }

  Q_SIGNALS:
    void filterChanged();
    void countChanged();

  protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

  private:
    Filter filter_ = All;
};

} // namespace quorbel
