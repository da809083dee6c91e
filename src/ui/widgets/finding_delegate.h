#pragma once
// Paints a row of the finding tree: a heading with its total, or a tick box, the title, a muted
// line of details (and the kept-by-default hint) and the size right-aligned.

#include <QStyledItemDelegate>

class FindingDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
