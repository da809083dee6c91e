#include "ui/widgets/app_list_model.h"

#include <QCollator>
#include <QDateTime>
#include <algorithm>

#include "core/fmt.h"
#include "model/model.h"

namespace {

const QString headingKey = QStringLiteral("heading");

QString appDetail(const InstalledApp& a) {
    QStringList bits;
    if (!a.developer.isEmpty()) bits << a.developer;
    // Where the platform does not say when an app was used, nothing is said about it.
    if (a.lastUsed) bits << AppListModel::tr("used %1").arg(Fmt::ago(a.lastUsed, QDateTime::currentDateTimeUtc()));
    return bits.join(QStringLiteral("  ·  "));
}

}  // namespace

AppListModel::AppListModel(Model& model, QObject* parent) : KeyedRows(parent), model_(model) { refresh(); }

QList<InstalledApp> AppListModel::sorted(QList<InstalledApp> apps, AppSort order) {
    switch (order) {
    case AppSort::size:
        std::stable_sort(apps.begin(), apps.end(), [](const auto& a, const auto& b) { return a.total() > b.total(); });
        break;
    case AppSort::name: {
        QCollator collator;
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        collator.setNumericMode(true);
        std::stable_sort(apps.begin(), apps.end(), [&](const auto& a, const auto& b) { return collator.compare(a.name, b.name) < 0; });
        break;
    }
    case AppSort::lastUsed:
        std::stable_sort(apps.begin(), apps.end(), [](const auto& a, const auto& b) {
            if (a.lastUsed.has_value() != b.lastUsed.has_value()) return a.lastUsed.has_value();
            return a.lastUsed && *a.lastUsed > *b.lastUsed;
        });
        break;
    }
    return apps;
}

QList<AppListModel::Row> AppListModel::build() const {
    QList<Row> rows;
    for (const InstalledApp& a : sorted(model_.apps(), model_.appSort()))
        rows.append(Row{app, QStringLiteral("app:") + a.id(), a, {}});
    if (!model_.orphans().isEmpty()) rows.append(Row{heading, headingKey, {}, {}});
    for (const Orphan& o : model_.orphans()) rows.append(Row{orphan, QStringLiteral("orphan:") + o.id(), {}, o});
    return rows;
}

void AppListModel::refresh() {
    largest_ = 0;
    for (const InstalledApp& a : model_.apps()) largest_ = std::max(largest_, a.total());
    follow(rows_, build(), [](const Row& r) -> const QString& { return r.key; });
    if (!rows_.isEmpty()) emit dataChanged(index(0), index(int(rows_.size()) - 1));
}

int AppListModel::rowOf(const QString& key) const {
    for (int i = 0; i < rows_.size(); ++i)
        if (rows_[i].key == key) return i;
    return -1;
}

const InstalledApp* AppListModel::appAt(const QModelIndex& index) const {
    return index.isValid() && rows_[index.row()].kind == app ? &rows_[index.row()].installed : nullptr;
}

const Orphan* AppListModel::orphanAt(const QModelIndex& index) const {
    return index.isValid() && rows_[index.row()].kind == orphan ? &rows_[index.row()].gone : nullptr;
}

QModelIndex AppListModel::indexOfApp(const QString& id) const {
    const int row = rowOf(QStringLiteral("app:") + id);
    return row < 0 ? QModelIndex() : index(row);
}

QModelIndex AppListModel::indexOfOrphan(const QString& id) const {
    const int row = rowOf(QStringLiteral("orphan:") + id);
    return row < 0 ? QModelIndex() : index(row);
}

int AppListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_.size(); }

QVariant AppListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.size()) return {};
    const Row& r = rows_[index.row()];
    if (role == kindRole) return r.kind;
    if (r.kind == heading) {
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return tr("Left behind by apps that are gone");
        if (role == bytesRole) {
            qint64 all = 0;
            for (const Orphan& o : model_.orphans()) all += o.bytes();
            return Fmt::bytes(all);
        }
        return {};
    }
    if (r.kind == orphan) {
        const Orphan& o = r.gone;
        switch (role) {
        case Qt::DisplayRole: return o.name;
        case idRole: return o.id();
        case bytesRole: return Fmt::bytes(o.bytes());
        case detailRole: {
            const QString items = Fmt::count(o.leftovers.size(), tr("item"));
            return o.bundleID.isEmpty() ? items : o.bundleID + QStringLiteral("  ·  ") + items;
        }
        case Qt::AccessibleTextRole: return o.name + QStringLiteral(", ") + Fmt::bytes(o.bytes());
        }
        return {};
    }
    const InstalledApp& a = r.installed;
    switch (role) {
    case Qt::DisplayRole: return a.name;
    case idRole: return a.id();
    case bytesRole: return Fmt::bytes(a.total());
    case detailRole: return appDetail(a);
    case appShareRole: return largest_ > 0 ? double(a.appBytes) / double(largest_) : 0.0;
    case leftoverShareRole: return largest_ > 0 ? double(a.leftoverBytes()) / double(largest_) : 0.0;
    case Qt::ToolTipRole:
        return a.leftoverBytes() > 0 ? tr("%1\nThe app %2, what it left %3").arg(Fmt::path(a.path), Fmt::bytes(a.appBytes), Fmt::bytes(a.leftoverBytes()))
                                     : Fmt::path(a.path);
    case Qt::AccessibleTextRole: return a.name + QStringLiteral(", ") + Fmt::bytes(a.total());
    }
    return {};
}

Qt::ItemFlags AppListModel::flags(const QModelIndex& index) const {
    // The heading is disabled so that the keys step over it.
    if (!index.isValid() || rows_[index.row()].kind == heading) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}
