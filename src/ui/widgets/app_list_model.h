#pragma once
// The rows of the Apps page: the installed apps in the chosen order, then a heading and the
// leftovers of apps that are gone. A thin adapter over the model that diffs by row key on every
// refresh (rows removed, moved, inserted, then updated), so the current row, the selection and the
// scroll position survive a reload or a new order.

#include <QAbstractListModel>

#include "core/records.h"
#include "model/page.h"

class Model;

class AppListModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Kind { app, heading, orphan };
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
    struct Row {
        Kind kind = app;
        QString key;
        InstalledApp installed;
        Orphan gone;
    };
    QList<Row> build() const;
    void update(QList<Row> fresh);
    int rowOf(const QString& key) const;

    Model& model_;
    QList<Row> rows_;
    qint64 largest_ = 0;  // the largest app's total, for the bars
};
