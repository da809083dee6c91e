#pragma once
// Paints a row of a Storage column: a folder or file mark, the name with its "partly locked" note,
// the size right-aligned, a mark when bytes ticked in Clean lie inside, an arrow on folders, and a
// thin bar of the item's share of the folder underneath.

#include <QStyledItemDelegate>

class ColumnDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
