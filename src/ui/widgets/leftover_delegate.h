#pragma once
// Paints a leftover: its tick, a badge of how sure Quarle is ("Sure", "Likely", "Your file"), the
// place and the reason beneath it, and its size right-aligned.

#include <QStyledItemDelegate>

class LeftoverDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
