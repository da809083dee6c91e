#pragma once
// One column of Storage: the children of one folder of the home tree, largest first. A thin adapter
// that holds the folder's list as the model gave it (shared, never copied row by row) and, when the
// same folder comes again, diffs it by path so that the view keeps its selection and scroll place.

#include <QMap>

#include "core/space_node.h"
#include "ui/widgets/keyed_rows.h"

class ColumnModel : public KeyedRows<SpaceNode> {
    Q_OBJECT
public:
    enum Role { pathRole = Qt::UserRole + 1, bytesRole, fractionRole, noteRole, isDirRole, clearableRole };

    explicit ColumnModel(QObject* parent = nullptr);
    // Shows `folder`'s children; `clearable` is how much of each is ticked in Clean, by path.
    void setFolder(const SpaceNode& folder, const QMap<QString, qint64>& clearable);

    const SpaceNode& folder() const { return folder_; }
    const SpaceNode* nodeAt(int row) const;
    int rowOf(const QString& path) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    const QList<SpaceNode>& kids() const { return folder_.kids; }

    SpaceNode folder_;  // its kids are the rows; their own kids are shared, not walked
    QMap<QString, qint64> clearable_;
};
