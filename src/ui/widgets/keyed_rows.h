#pragma once
// A flat list model whose rows follow a fresh list by a stable key: rows that went are removed,
// those that stay take the fresh order (persistent indexes move with them), new ones come in where
// they belong, each in runs. Views keep their current row, selection and scroll place through a
// refresh, and a list that comes again unchanged costs one pass.

#include <QAbstractListModel>
#include <QHash>
#include <QList>
#include <algorithm>

template <class Row>
class KeyedRows : public QAbstractListModel {
protected:
    using QAbstractListModel::QAbstractListModel;

    // Brings `rows` (this model's rows) to `fresh`; `keyOf` gives a row's key as a QString.
    template <class KeyOf>
    void follow(QList<Row>& rows, const QList<Row>& fresh, KeyOf keyOf) {
        const auto sameKey = [&](const Row& a, const Row& b) { return keyOf(a) == keyOf(b); };
        if (rows.size() == fresh.size() && std::equal(rows.cbegin(), rows.cend(), fresh.cbegin(), sameKey)) {
            rows = fresh;
            return;
        }
        QHash<QString, int> place;
        place.reserve(fresh.size());
        for (int i = 0; i < fresh.size(); ++i) place.insert(keyOf(fresh[i]), i);
        // Rows that went, in runs from the end so that the rows before keep their numbers.
        for (int row = int(rows.size()) - 1; row >= 0;) {
            if (place.contains(keyOf(rows[row]))) {
                --row;
                continue;
            }
            int first = row;
            while (first > 0 && !place.contains(keyOf(rows[first - 1]))) --first;
            this->beginRemoveRows({}, first, row);
            rows.remove(first, row - first + 1);
            this->endRemoveRows();
            row = first - 1;
        }
        // The rows that stay take the fresh order.
        const auto before = [&](const Row& a, const Row& b) { return place.value(keyOf(a)) < place.value(keyOf(b)); };
        if (!std::is_sorted(rows.cbegin(), rows.cend(), before)) {
            emit this->layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
            QList<Row> ordered = rows;
            std::stable_sort(ordered.begin(), ordered.end(), before);
            QHash<QString, int> now;
            for (int i = 0; i < ordered.size(); ++i) now.insert(keyOf(ordered[i]), i);
            const QModelIndexList was = this->persistentIndexList();
            QModelIndexList is;
            for (const QModelIndex& i : was) is.append(this->index(now.value(keyOf(rows[i.row()]))));
            rows = std::move(ordered);
            this->changePersistentIndexList(was, is);
            emit this->layoutChanged({}, QAbstractItemModel::VerticalSortHint);
        }
        // What is left is in the fresh order: each run of new rows goes in before the next row kept.
        for (int i = 0; i < fresh.size();) {
            if (i < rows.size() && sameKey(rows[i], fresh[i])) {
                ++i;
                continue;
            }
            int end = i + 1;
            while (end < fresh.size() && !(i < rows.size() && sameKey(rows[i], fresh[end]))) ++end;
            this->beginInsertRows({}, i, end - 1);
            for (int j = i; j < end; ++j) rows.insert(j, fresh[j]);
            this->endInsertRows();
            i = end;
        }
        rows = fresh;  // the same keys in the same order now; the fresh values
    }
};
