#pragma once

#include "ui/logic/PresetTexts.h"

#include <QSortFilterProxyModel>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Presets of one destination of the sidebar: `App.presets`, filtered, with the same roles. A
/// search filters further by name, category and description. Not final: QML instantiates a derived
/// class. [main]
class PresetFilterModel : public QSortFilterProxyModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Filter filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(QString title READ title NOTIFY filterChanged)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    /// Number of rows: those of `total` that match the search.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int total READ total NOTIFY countChanged)

  public:
    enum Filter { All, Factory, Mine };
    Q_ENUM(Filter)

    explicit PresetFilterModel(QObject *parent = nullptr);

    [[nodiscard]] Filter filter() const { return filter_; }
    void setFilter(Filter filter);
    [[nodiscard]] QString title() const;
    [[nodiscard]] const QString &search() const { return search_; }
    void setSearch(const QString &search);
    [[nodiscard]] int count() const { return rowCount(); }
    [[nodiscard]] int total() const;
    /// Row of a preset; -1 if it is not shown.
    [[nodiscard]] Q_INVOKABLE int rowOf(const QString &presetId) const;

  Q_SIGNALS:
    void filterChanged();
    void searchChanged();
    void countChanged();

  protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

  private:
    Filter filter_ = All;
    QString search_;
};

} // namespace quorbel
