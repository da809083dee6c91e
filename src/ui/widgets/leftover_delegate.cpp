#include "ui/widgets/leftover_delegate.h"

#include <QApplication>
#include <QPainter>

#include "core/kinds.h"
#include "ui/theme/theme.h"
#include "ui/widgets/leftover_model.h"

namespace {
constexpr int sizeColumn = 100;
constexpr int badgeWidth = 74;
}  // namespace

QSize LeftoverDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {200, 2 * option.fontMetrics.height() + 14};
}

void LeftoverDelegate::paint(QPainter* p, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QWidget* widget = opt.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    const QRect r = opt.rect;
    const int line = opt.fontMetrics.height();
    p->save();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &opt, p, widget);
    const bool selected = opt.state & QStyle::State_Selected;
    const QColor text = opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);

    // The tick where the style puts it, so that a click on it toggles it.
    QStyleOptionViewItem check = opt;
    check.rect = style->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &opt, widget);
    check.state &= ~QStyle::State_HasFocus;
    check.state |= opt.checkState == Qt::Checked ? QStyle::State_On : QStyle::State_Off;
    style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &check, p, widget);

    // The badge, a soft pill in the paint of its confidence.
    const Confidence confidence = Confidence(index.data(LeftoverModel::confidenceRole).toInt());
    QFont small = Theme::smallFont();
    small.setWeight(QFont::Medium);
    const QRectF badge(check.rect.right() + 10, r.top() + 7, badgeWidth, line);
    p->setRenderHint(QPainter::Antialiasing);
    p->setPen(Qt::NoPen);
    p->setBrush(Theme::confidence(confidence));
    p->drawRoundedRect(badge, line / 2.0, line / 2.0);
    p->setFont(small);
    p->setPen(QColor(0x22, 0x24, 0x28));
    p->drawText(badge, Qt::AlignCenter, title(confidence));

    const int left = int(badge.right()) + 10;
    const QRect body(left, r.top() + 7, r.right() - sizeColumn - left, 2 * line);
    p->setFont(opt.font);
    p->setPen(text);
    p->drawText(QRect(body.left(), body.top(), body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                opt.fontMetrics.elidedText(opt.text, Qt::ElideMiddle, body.width()));
    p->drawText(QRect(r.right() - sizeColumn, body.top(), sizeColumn - 10, line), Qt::AlignRight | Qt::AlignVCenter,
                index.data(LeftoverModel::bytesRole).toString());
    p->setPen(selected ? text : Theme::muted());
    p->drawText(QRect(body.left(), body.top() + line, body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                opt.fontMetrics.elidedText(index.data(LeftoverModel::whyRole).toString(), Qt::ElideRight, body.width()));
    p->restore();
}
