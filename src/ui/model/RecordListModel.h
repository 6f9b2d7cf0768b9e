#pragma once

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace quorbel {

/// List of records for QML. Removes and inserts only the changed rows, so that a view keeps its
/// position and focus. [main]
class RecordListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int count() const { return rowCount({}); }

  Q_SIGNALS:
    void countChanged();

  protected:
    /// Replaces `records`, which the model shows, with `next`. Rows with equal keys count as the
    /// same row with changed content.
    template <typename Record, typename Key>
    void replaceRecords(std::vector<Record> &records, std::vector<Record> next, Key key) {
        const auto isSame = [&](const Record &a, const Record &b) {
            return std::invoke(key, a) == std::invoke(key, b);
        };
        const auto first = std::ranges::mismatch(records, next, isSame).in1 - records.begin();
        const auto shorter = static_cast<std::ptrdiff_t>(std::min(records.size(), next.size()));
        std::ptrdiff_t tail = 0;
        while (tail < shorter - first && isSame(records.end()[-1 - tail], next.end()[-1 - tail]))
            ++tail;
        const auto end = static_cast<std::ptrdiff_t>(records.size()) - tail;
        const auto nextEnd = static_cast<std::ptrdiff_t>(next.size()) - tail;
        const bool countChanges = records.size() != next.size();

        if (end > first) {
            beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end - 1));
            records.erase(records.begin() + first, records.begin() + end);
            endRemoveRows();
        }
        if (nextEnd > first) {
            beginInsertRows({}, static_cast<int>(first), static_cast<int>(nextEnd - 1));
            records.insert(records.begin() + first, next.begin() + first, next.begin() + nextEnd);
            endInsertRows();
        }
        records = std::move(next);
        announceContents();
        if (countChanges)
            Q_EMIT countChanged();
    }

    /// Announces that the content of every row may have changed.
    void announceContents() {
        if (count() > 0)
            Q_EMIT dataChanged(index(0), index(count() - 1));
    }
};

} // namespace quorbel
