#include "ui/widgets/finding_delegate.h"

#include <QApplication>
#include <QPainter>

#include "ui/theme/theme.h"
#include "ui/widgets/finding_model.h"

namespace {
constexpr int sizeColumn = 110;
}

QSize FindingDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int line = option.fontMetrics.height();
    switch (index.data(FindingModel::kindRole).toInt()) {
    case FindingModel::group: return {200, line + 22};
    case FindingModel::finding:
        return {200, line * (index.data(FindingModel::keptRole).toString().isEmpty() ? 2 : 3) + 14};
    default: return {200, line + (index.data(FindingModel::detailRole).toString().isEmpty() ? 10 : line + 10)};
    }
}

void FindingDelegate::paint(QPainter* p, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QWidget* widget = opt.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    const int kind = index.data(FindingModel::kindRole).toInt();
    const QRect r = opt.rect;
    const int line = opt.fontMetrics.height();
    p->save();
    if (kind == FindingModel::group) {
        QFont bold = opt.font;
        bold.setWeight(QFont::DemiBold);
        p->setFont(bold);
        p->setPen(opt.palette.color(QPalette::Text));
        const QRect text = r.adjusted(4, 10, -11, 0);  // sizes end where the rows' sizes end
        p->drawText(text, Qt::AlignLeft | Qt::AlignTop, opt.text);
        p->drawText(text, Qt::AlignRight | Qt::AlignTop, index.data(FindingModel::bytesRole).toString());
        p->setPen(opt.palette.color(QPalette::Mid));
        p->drawLine(r.left() + 4, r.bottom(), r.right() - 8, r.bottom());
        p->restore();
        return;
    }
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &opt, p, widget);
    const bool selected = opt.state & QStyle::State_Selected;
    const QColor text = opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor dim = selected ? text : Theme::muted();
    int left = r.left() + 6;
    if (opt.features & QStyleOptionViewItem::HasCheckIndicator) {
        QStyleOptionViewItem check = opt;
        check.rect = style->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &opt, widget);
        check.state &= ~QStyle::State_HasFocus;
        check.state |= opt.checkState == Qt::Checked            ? QStyle::State_On
                       : opt.checkState == Qt::PartiallyChecked ? QStyle::State_NoChange
                                                                : QStyle::State_Off;
        if (!(index.flags() & Qt::ItemIsUserCheckable)) check.state &= ~QStyle::State_Enabled;
        style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &check, p, widget);
        left = check.rect.right() + 10;
    } else {
        left += 24;
    }
    const QRect body(left, r.top() + 5, r.right() - sizeColumn - left, r.height() - 10);
    QFont title = opt.font;
    if (kind == FindingModel::finding) title.setWeight(QFont::Medium);
    p->setFont(title);
    p->setPen(text);
    p->drawText(QRect(body.left(), body.top(), body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                opt.fontMetrics.elidedText(opt.text, Qt::ElideRight, body.width()));
    p->drawText(QRect(r.right() - sizeColumn, body.top(), sizeColumn - 10, line), Qt::AlignRight | Qt::AlignVCenter,
                index.data(FindingModel::bytesRole).toString());
    p->setFont(opt.font);
    p->setPen(dim);
    const QString detail = index.data(FindingModel::detailRole).toString();
    if (!detail.isEmpty())
        p->drawText(QRect(body.left(), body.top() + line, body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                    opt.fontMetrics.elidedText(detail, Qt::ElideRight, body.width()));
    const QString kept = index.data(FindingModel::keptRole).toString();
    if (!kept.isEmpty()) {
        QFont italic = opt.font;
        italic.setItalic(true);
        p->setFont(italic);
        p->drawText(QRect(body.left(), body.top() + 2 * line, body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                    kept);
    }
    p->restore();
}
