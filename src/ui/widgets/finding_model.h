#pragma once
// The rows of Clean or Developer as a tree: bucket headings, their findings, each finding's parts.
// A thin adapter over the model: ticks are read from and written to it. A new result with the same
// rows and parts updates in place; any other reshapes the tree (the page restores its place).

#include <QAbstractItemModel>
#include <QSet>

#include "core/records.h"

class Model;

class FindingModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Kind { group, finding, part };
    enum Role { kindRole = Qt::UserRole + 1, idRole, bytesRole, detailRole, keptRole };

    FindingModel(Model& model, bool developerOnly, QObject* parent = nullptr);
    // Reads the model's rows again; true when the tree kept its shape.
    bool refresh();

    Kind kind(const QModelIndex& index) const;
    const Finding* findingAt(const QModelIndex& index) const;
    const Part* partAt(const QModelIndex& index) const;
    QModelIndex indexOf(const QString& findingId) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Row {
        Finding finding;
        QList<Part> parts;
        QSet<QString> chosen;  // paths of the parts ticked, read once per refresh: a row may hold thousands
    };
    struct Group {
        Bucket bucket;
        QList<Row> rows;
        qint64 bytes = 0;
    };
    QList<Group> build() const;
    const Row* rowAt(const QModelIndex& index) const;

    Model& model_;
    const bool developerOnly_;
    QList<Group> groups_;
};
