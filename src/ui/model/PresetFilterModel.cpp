#include "ui/model/PresetFilterModel.h"

#include "ui/model/AppModel.h"
#include "ui/model/PresetListModel.h"

#include <QStringList>

#include <algorithm>

namespace quorbel {

namespace {

PresetFilter filterOf(PresetFilterModel::Filter filter) {
    return static_cast<PresetFilter>(filter);
}

/// Removes accents and case: decomposes letters and drops their marks. Uses upper case, which has
/// one form for "ß" and "ss".
QString folded(const QString &text) {
    QString letters = text.normalized(QString::NormalizationForm_KD);
    letters.removeIf([](QChar letter) { return letter.isMark(); });
    return letters.toUpper();
}

/// Returns true if each word of `search` occurs in `text`, ignoring case and accents: "cafe RAD"
/// occurs in "Café, Radio". An empty search always matches.
bool matchesSearch(const QString &text, const QString &search) {
    const QStringList words = folded(search).simplified().split(u' ', Qt::SkipEmptyParts);
    const QString all = folded(text);
    return std::ranges::all_of(words, [&](const QString &word) { return all.contains(word); });
}

} // namespace

PresetFilterModel::PresetFilterModel(QObject *parent) : QSortFilterProxyModel(parent) {
    connect(this, &QAbstractItemModel::rowsInserted, this, &PresetFilterModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &PresetFilterModel::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &PresetFilterModel::countChanged);
    if (AppModel *app = AppModel::instance()) {
        setSourceModel(app->presets());
        // The source removes rows after this model does, and `total` counts the source.
        connect(app->presets(), &RecordListModel::countChanged, this,
                &PresetFilterModel::countChanged);
    }
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
    return QString::fromUtf8(quorbel::title(filterOf(filter_)));
}

void PresetFilterModel::setSearch(const QString &search) {
    if (search == search_)
        return;
    search_ = search;
    invalidateFilter();
    Q_EMIT searchChanged();
    Q_EMIT countChanged();
}

int PresetFilterModel::total() const {
    const auto *presets = qobject_cast<const PresetListModel *>(sourceModel());
    return presets == nullptr ? 0 : countOf(filterOf(filter_), presets->presets());
}

int PresetFilterModel::rowOf(const QString &presetId) const {
    for (int row = 0; row < count(); ++row)
        if (data(index(row, 0), PresetListModel::presetIdRole) == presetId)
            return row;
    return -1;
}

bool PresetFilterModel::filterAcceptsRow(int row, const QModelIndex &) const {
    const auto *presets = qobject_cast<const PresetListModel *>(sourceModel());
    if (presets == nullptr)
        return true;
    const auto says = [&](int role) { return presets->data(presets->index(row), role).toString(); };
    return passes(filterOf(filter_), presets->presets().at(static_cast<std::size_t>(row))) &&
           (search_.isEmpty() || matchesSearch(says(PresetListModel::nameRole) + '\n' +
                                                   says(PresetListModel::categoryTitleRole) + '\n' +
                                                   says(PresetListModel::notesRole),
                                               search_));
}

} // namespace quorbel
