#include "ui/widgets/column_model.h"

#include "core/fmt.h"

ColumnModel::ColumnModel(QObject* parent) : KeyedRows(parent) {}

void ColumnModel::setFolder(const SpaceNode& folder, const QMap<QString, qint64>& clearable) {
    clearable_ = clearable;
    if (folder.path != folder_.path) {
        beginResetModel();
        folder_ = folder;
        endResetModel();
        return;
    }
    if (!folder.kids.isSharedWith(folder_.kids))
        follow(folder_.kids, folder.kids, [](const SpaceNode& n) -> const QString& { return n.path; });
    folder_ = folder;
    if (!kids().isEmpty()) emit dataChanged(index(0), index(int(kids().size()) - 1));
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
