#include "ui/model/PresetFilterModel.h"

#include "ui/model/AppModel.h"
#include "ui/model/PresetListModel.h"

namespace quorbel {

namespace {

PresetFilter filterOf(PresetFilterModel::Filter filter) {
    return static_cast<PresetFilter>(filter);
}

} // namespace

PresetFilterModel::PresetFilterModel(QObject *parent) : QSortFilterProxyModel(parent) {
    connect(this, &QAbstractItemModel::rowsInserted, this, &PresetFilterModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &PresetFilterModel::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &PresetFilterModel::countChanged);
    if (AppModel *app = AppModel::instance())
        setSourceModel(app->presets());
}

void PresetFilterModel::setFilter(Filter filter) {
    if (filter == filter_)
        return;
    filter_ = filter;
    invalidateFilter();
    Q_EMIT filterChanged();
    Q_EMIT countChanged();
}

QString PresetFilterModel::title() const {
    const std::string_view title = quorbel::title(filterOf(filter_));
    return QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size()));
}

bool PresetFilterModel::filterAcceptsRow(int row, const QModelIndex &) const {
    const auto *presets = qobject_cast<const PresetListModel *>(sourceModel());
    return presets == nullptr ||
           passes(filterOf(filter_), presets->presets().at(static_cast<std::size_t>(row)));
}

} // namespace quorbel
