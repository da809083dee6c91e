#include "ui/widgets/leftover_model.h"

#include "core/fmt.h"
#include "model/model.h"

namespace {

template <class T>
const T* find(const QList<T>& list, const std::optional<QString>& id) {
    if (!id) return nullptr;
    for (const T& item : list)
        if (item.id() == *id) return &item;
    return nullptr;
}

bool samePaths(const QList<Leftover>& a, const QList<Leftover>& b) {
    if (a.size() != b.size()) return false;
    for (int i = 0; i < a.size(); ++i)
        if (a[i].path != b[i].path) return false;
    return true;
}

}  // namespace

LeftoverModel::LeftoverModel(Model& model, QObject* parent) : QAbstractListModel(parent), model_(model) { refresh(); }

QList<Leftover> LeftoverModel::focused() const {
    if (const InstalledApp* a = find(model_.apps(), model_.appFocus())) return a->leftovers;
    if (const Orphan* o = find(model_.orphans(), model_.orphanFocus())) return o->leftovers;
    return {};
}

void LeftoverModel::refresh() {
    QList<Leftover> fresh = focused();
    if (samePaths(rows_, fresh)) {
        rows_ = std::move(fresh);
        if (!rows_.isEmpty()) emit dataChanged(index(0), index(rows_.size() - 1));
        return;
    }
    beginResetModel();
    rows_ = std::move(fresh);
    endResetModel();
}

int LeftoverModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_.size(); }

QVariant LeftoverModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.size()) return {};
    const Leftover& l = rows_[index.row()];
    switch (role) {
    case Qt::DisplayRole: return Fmt::path(l.path);
    case pathRole: return l.path;
    case confidenceRole: return int(l.confidence);
    case whyRole: return l.why;
    case bytesRole: return Fmt::bytes(l.bytes);
    case Qt::ToolTipRole: return Fmt::path(l.path);
    case Qt::AccessibleTextRole:
        return title(l.confidence) + QStringLiteral(": ") + Fmt::path(l.path) + QStringLiteral(", ") + Fmt::bytes(l.bytes);
    case Qt::CheckStateRole: return model_.leftoverTicks().contains(l.path) ? Qt::Checked : Qt::Unchecked;
    }
    return {};
}

bool LeftoverModel::setData(const QModelIndex& index, const QVariant&, int role) {
    if (role != Qt::CheckStateRole || !index.isValid()) return false;
    // The model decides; the rows follow its change signal.
    model_.toggleLeftover(rows_[index.row()].path);
    return true;
}

Qt::ItemFlags LeftoverModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
}
