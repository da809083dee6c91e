#include "ui/widgets/finding_model.h"

#include "core/fmt.h"
#include "core/picks.h"
#include "model/model.h"
#include "scan/catalogue.h"

namespace {

// Internal ids: 0 a heading; g+1 a finding of heading g; (g+1) << 32 | (f+1) a part of finding f.
constexpr quintptr partShift = 32;
constexpr quintptr low = (quintptr(1) << partShift) - 1;

bool sameShape(const auto& a, const auto& b) {
    if (a.size() != b.size()) return false;
    for (int g = 0; g < a.size(); ++g) {
        if (a[g].rows.size() != b[g].rows.size()) return false;
        for (int f = 0; f < a[g].rows.size(); ++f) {
            const auto& x = a[g].rows[f];
            const auto& y = b[g].rows[f];
            if (x.finding.id != y.finding.id || x.parts.size() != y.parts.size()) return false;
            for (int p = 0; p < x.parts.size(); ++p)
                if (x.parts[p].path != y.parts[p].path) return false;
        }
    }
    return true;
}

}  // namespace

FindingModel::FindingModel(Model& model, bool developerOnly, QObject* parent)
    : QAbstractItemModel(parent), model_(model), developerOnly_(developerOnly) {
    groups_ = build();
}

QList<FindingModel::Group> FindingModel::build() const {
    QList<Group> groups;
    if (!model_.scan()) {
        // While the first scan runs, each rule's row shows as its folders are measured, without a
        // tick: nothing can be chosen before the result.
        for (Bucket bucket : {Bucket::now, Bucket::call}) {
            Group g{bucket, {}, 0};
            for (const EarlyRow& e : model_.early()) {
                const std::optional<Catalogue::Rule> rule = Catalogue::rule(e.id);
                if (e.bucket != bucket || (developerOnly_ && !(rule && rule->developer))) continue;
                Finding f;
                f.id = e.id;
                f.title = e.title;
                f.bucket = e.bucket;
                f.bytes = e.bytes;
                f.partial = !e.done;
                f.place = e.done ? tr("Measured") : tr("Measuring…");
                f.removal = Removal::none();
                g.rows.append(Row{f, {}, {}});
                g.bytes += e.bytes;
            }
            if (!g.rows.isEmpty()) groups.append(g);
        }
        return groups;
    }
    for (const Finding& f : model_.scan()->findings) {
        if (developerOnly_ && !f.developer) continue;
        if (groups.isEmpty() || groups.last().bucket != f.bucket) groups.append(Group{f.bucket, {}, 0});
        Row row{f, model_.inside(f), {}};
        for (const Part& p : model_.chosen(f)) row.chosen.insert(p.path);
        groups.last().rows.append(std::move(row));
        groups.last().bytes += f.bytes;
    }
    return groups;
}

bool FindingModel::refresh() {
    QList<Group> fresh = build();
    if (sameShape(groups_, fresh)) {
        groups_ = std::move(fresh);
        for (int g = 0; g < groups_.size(); ++g) {
            const QModelIndex heading = index(g, 0);
            emit dataChanged(heading, heading);
            const int rows = groups_[g].rows.size();
            if (rows == 0) continue;
            emit dataChanged(index(0, 0, heading), index(rows - 1, 0, heading));
            for (int f = 0; f < rows; ++f) {
                const int parts = groups_[g].rows[f].parts.size();
                const QModelIndex row = index(f, 0, heading);
                if (parts > 0) emit dataChanged(index(0, 0, row), index(parts - 1, 0, row));
            }
        }
        return true;
    }
    beginResetModel();
    groups_ = std::move(fresh);
    endResetModel();
    return false;
}

FindingModel::Kind FindingModel::kind(const QModelIndex& index) const {
    const quintptr id = index.internalId();
    return id == 0 ? group : id <= low ? finding : part;
}

const FindingModel::Row* FindingModel::rowAt(const QModelIndex& index) const {
    if (!index.isValid()) return nullptr;
    const quintptr id = index.internalId();
    if (id == 0) return nullptr;
    if (id <= low) return &groups_[int(id - 1)].rows[index.row()];
    return &groups_[int((id >> partShift) - 1)].rows[int((id & low) - 1)];
}

const Finding* FindingModel::findingAt(const QModelIndex& index) const {
    const Row* row = rowAt(index);
    return row ? &row->finding : nullptr;
}

const Part* FindingModel::partAt(const QModelIndex& index) const {
    return index.isValid() && kind(index) == part ? &rowAt(index)->parts[index.row()] : nullptr;
}

QModelIndex FindingModel::indexOf(const QString& findingId) const {
    for (int g = 0; g < groups_.size(); ++g)
        for (int f = 0; f < groups_[g].rows.size(); ++f)
            if (groups_[g].rows[f].finding.id == findingId) return index(f, 0, index(g, 0));
    return {};
}

QModelIndex FindingModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column != 0 || row >= rowCount(parent)) return {};
    if (!parent.isValid()) return createIndex(row, 0, quintptr(0));
    if (kind(parent) == group) return createIndex(row, 0, quintptr(parent.row() + 1));
    return createIndex(row, 0, (parent.internalId() << partShift) | quintptr(parent.row() + 1));
}

QModelIndex FindingModel::parent(const QModelIndex& child) const {
    if (!child.isValid()) return {};
    const quintptr id = child.internalId();
    if (id == 0) return {};
    if (id <= low) return createIndex(int(id - 1), 0, quintptr(0));
    return createIndex(int((id & low) - 1), 0, id >> partShift);
}

int FindingModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return groups_.size();
    switch (kind(parent)) {
    case group: return groups_[parent.row()].rows.size();
    case finding: return rowAt(parent)->parts.size();
    default: return 0;
    }
}

QVariant FindingModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Kind k = kind(index);
    if (role == kindRole) return k;
    if (k == group) {
        const Group& g = groups_[index.row()];
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return title(g.bucket);
        if (role == bytesRole) return Fmt::bytes(g.bytes);
        return {};
    }
    const Finding& f = rowAt(index)->finding;
    if (k == finding) {
        switch (role) {
        case Qt::DisplayRole: return f.title;
        case idRole: return f.id;
        case bytesRole: return f.partial ? Fmt::bytes(f.bytes) + QStringLiteral("+") : Fmt::bytes(f.bytes);
        case detailRole: {
            QStringList bits{f.place};
            if (!f.comesBack.isEmpty()) bits << f.comesBack;
            if (f.removal.isCommand()) bits << tr("Cleared by running %1").arg(f.removal.args.value(0));
            if (f.removal.isNone() && model_.scan()) bits << tr("Only listed: Quarle does not clear it");
            return bits.join(QStringLiteral("  ·  "));
        }
        case keptRole: return Picks::keptNote(f.id).value_or(QString());
        case Qt::ToolTipRole: return f.explain;
        case Qt::AccessibleTextRole: return f.title + QStringLiteral(", ") + Fmt::bytes(f.bytes);
        case Qt::CheckStateRole:
            if (f.removal.isNone()) return {};
            switch (model_.tickState(f)) {
            case TickState::off: return Qt::Unchecked;
            case TickState::some: return Qt::PartiallyChecked;
            case TickState::all: return Qt::Checked;
            }
        }
        return {};
    }
    const Part& p = rowAt(index)->parts[index.row()];
    switch (role) {
    case Qt::DisplayRole: return p.name;
    case idRole: return p.path;
    case bytesRole: return Fmt::bytes(p.bytes);
    case detailRole: {
        QString detail = p.note;
        if (model_.picks().never.contains(p.path))
            detail = detail.isEmpty() ? tr("Never cleared") : detail + tr("  ·  never cleared");
        return detail;
    }
    case Qt::ToolTipRole: return Fmt::path(p.path);
    case Qt::AccessibleTextRole: return p.name + QStringLiteral(", ") + Fmt::bytes(p.bytes);
    case Qt::CheckStateRole:
        if (f.removal.isNone()) return {};
        return rowAt(index)->chosen.contains(p.path) ? Qt::Checked : Qt::Unchecked;
    }
    return {};
}

bool FindingModel::setData(const QModelIndex& index, const QVariant&, int role) {
    if (role != Qt::CheckStateRole || !index.isValid() || kind(index) == group) return false;
    // The model decides; the rows follow its change signals.
    const Row* row = rowAt(index);
    if (kind(index) == finding) model_.toggle(row->finding);
    else model_.togglePart(row->finding, row->parts[index.row()]);
    return true;
}

Qt::ItemFlags FindingModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    if (kind(index) == group) return Qt::ItemIsEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const Row* row = rowAt(index);
    if (row->finding.removal.isNone()) return flags;
    // Parts tick one by one only where a row moves its parts to the Trash and has more than one.
    if (kind(index) == part && (!row->finding.removal.isTrash() || row->parts.size() < 2)) return flags;
    return flags | Qt::ItemIsUserCheckable;
}
