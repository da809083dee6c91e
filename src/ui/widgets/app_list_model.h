#pragma once
// The rows of the Apps page: the installed apps in the chosen order, then a heading and the
// leftovers of apps that are gone. A thin adapter over the model that diffs by row key on every
// refresh (rows removed, moved, inserted, then updated), so the current row, the selection and the
// scroll position survive a reload or a new order.

#include "core/records.h"
#include "model/page.h"
#include "ui/widgets/keyed_rows.h"

class Model;

// One row: an installed app, the heading over the gone apps, or a gone app.
struct AppRow {
    enum Kind { app, heading, orphan };
    Kind kind = app;
    QString key;
    InstalledApp installed;
    Orphan gone;
};

class AppListModel : public KeyedRows<AppRow> {
    Q_OBJECT
public:
    using Kind = AppRow::Kind;
    using enum AppRow::Kind;
    enum Role { kindRole = Qt::UserRole + 1, idRole, bytesRole, detailRole, appShareRole, leftoverShareRole };

    explicit AppListModel(Model& model, QObject* parent = nullptr);
    // Reads the model's apps, orphans and order again.
    void refresh();

    const InstalledApp* appAt(const QModelIndex& index) const;
    const Orphan* orphanAt(const QModelIndex& index) const;
    QModelIndex indexOfApp(const QString& id) const;
    QModelIndex indexOfOrphan(const QString& id) const;

    // The apps in the order `order` gives: largest first, by name, or the most recently used first
    // (apps without a date after those with one); ties keep the listing's order.
    static QList<InstalledApp> sorted(QList<InstalledApp> apps, AppSort order);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    using Row = AppRow;
    QList<Row> build() const;
    int rowOf(const QString& key) const;

    Model& model_;
    QList<Row> rows_;
    qint64 largest_ = 0;  // the largest app's total, for the bars
};
