#pragma once
// The leftovers of the focused app or gone app, each with its tick, how sure Quarle is and why. Ticks
// are read from and written to the model; the same leftovers update in place, others replace them.

#include <QAbstractListModel>

#include "core/records.h"

class Model;

class LeftoverModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { confidenceRole = Qt::UserRole + 1, whyRole, bytesRole, pathRole };

    explicit LeftoverModel(Model& model, QObject* parent = nullptr);
    void refresh();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    QList<Leftover> focused() const;

    Model& model_;
    QList<Leftover> rows_;
};
