#include "ui/widgets/column_model.h"

#include <QSet>

#include "core/fmt.h"

ColumnModel::ColumnModel(QObject* parent) : QAbstractListModel(parent) {}

void ColumnModel::setFolder(const SpaceNode& folder, const QMap<QString, qint64>& clearable) {
    clearable_ = clearable;
    if (folder.path != folder_.path) {
        beginResetModel();
        folder_ = folder;
        endResetModel();
        return;
    }
    if (!folder.kids.isSharedWith(folder_.kids)) diff(folder.kids);
    folder_ = folder;
    if (!kids().isEmpty()) emit dataChanged(index(0), index(int(kids().size()) - 1));
}

void ColumnModel::diff(const QList<SpaceNode>& fresh) {
    // The same folder listed again, usually with the same entries in the same order.
    const bool sameRows = fresh.size() == kids().size() &&
                          std::equal(fresh.cbegin(), fresh.cend(), kids().cbegin(),
                                     [](const SpaceNode& a, const SpaceNode& b) { return a.path == b.path; });
    if (sameRows) return;
    QSet<QString> freshPaths;
    freshPaths.reserve(fresh.size());
    for (const SpaceNode& n : fresh) freshPaths.insert(n.path);
    // Rows that went, in runs from the end so that the rows before keep their numbers.
    for (int row = int(kids().size()) - 1; row >= 0;) {
        if (freshPaths.contains(kids()[row].path)) {
            --row;
            continue;
        }
        int first = row;
        while (first > 0 && !freshPaths.contains(kids()[first - 1].path)) --first;
        beginRemoveRows({}, first, row);
        folder_.kids.remove(first, row - first + 1);
        endRemoveRows();
        row = first - 1;
    }
    // What is left is in the fresh order: the new rows go in where they belong.
    qsizetype j = 0;
    for (const SpaceNode& n : fresh)
        if (j < kids().size() && kids()[j].path == n.path) ++j;
    if (j == kids().size()) {
        for (int row = 0; row < fresh.size(); ++row) {
            if (row < kids().size() && kids()[row].path == fresh[row].path) continue;
            // fresh[row] is new; so is every one up to the row that is shown at `row` now.
            int last = row;
            while (last + 1 < fresh.size() && !(row < kids().size() && kids()[row].path == fresh[last + 1].path)) ++last;
            beginInsertRows({}, row, last);
            for (int k = row; k <= last; ++k) folder_.kids.insert(k, fresh[k]);
            endInsertRows();
            row = last;
        }
        folder_.kids = fresh;
        return;
    }
    // A new order: the same rows move, and the view's selection moves with them.
    emit layoutAboutToBeChanged();
    QHash<QString, int> rowOfFresh;
    for (int row = 0; row < fresh.size(); ++row) rowOfFresh.insert(fresh[row].path, row);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex& i : before) after.append(index(rowOfFresh.value(kids()[i.row()].path)));
    folder_.kids = fresh;
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

const SpaceNode* ColumnModel::nodeAt(int row) const {
    return row >= 0 && row < kids().size() ? &kids()[row] : nullptr;
}

int ColumnModel::rowOf(const QString& path) const {
    for (int row = 0; row < kids().size(); ++row)
        if (kids()[row].path == path) return row;
    return -1;
}

int ColumnModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(kids().size()); }

QVariant ColumnModel::data(const QModelIndex& index, int role) const {
    const SpaceNode* n = nodeAt(index.row());
    if (!n || index.parent().isValid()) return {};
    switch (role) {
    case Qt::DisplayRole: return n->name;
    case Qt::AccessibleTextRole: return QStringLiteral("%1, %2").arg(n->name, Fmt::bytes(n->bytes));
    case Qt::ToolTipRole: {
        const qint64 ticked = clearable_.value(n->path, 0);
        return ticked > 0 ? tr("%1\n%2 inside is ticked to clear in Clean").arg(Fmt::path(n->path), Fmt::bytes(ticked))
                          : Fmt::path(n->path);
    }
    case pathRole: return n->path;
    case bytesRole: return Fmt::bytes(n->bytes);
    case fractionRole: {
        const qint64 whole = std::max(folder_.bytes, kids().first().bytes);
        return whole > 0 ? double(n->bytes) / double(whole) : 0.0;
    }
    case noteRole: return n->note;
    case isDirRole: return n->isDir;
    case clearableRole: return n->isDir ? clearable_.value(n->path, 0) : qint64(0);
    default: return {};
    }
}
