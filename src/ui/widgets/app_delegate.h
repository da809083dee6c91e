#pragma once
// Paints a row of the Apps list: an app with its maker and the split of its size (the app itself
// and what it left behind) as a small two-part bar, the heading of the gone apps, or one of them.

#include <QStyledItemDelegate>

class AppDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
