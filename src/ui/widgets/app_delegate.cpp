#include "ui/widgets/app_delegate.h"

#include <QApplication>
#include <QPainter>

#include "ui/theme/theme.h"
#include "ui/widgets/app_list_model.h"

namespace {
constexpr int sizeColumn = 110;
constexpr int barWidth = 90;
}  // namespace

QSize AppDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const int line = option.fontMetrics.height();
    if (index.data(AppListModel::kindRole).toInt() == AppListModel::heading) return {200, line + 30};
    return {200, 2 * line + 16};
}

void AppDelegate::paint(QPainter* p, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QWidget* widget = opt.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    const QRect r = opt.rect;
    const int line = opt.fontMetrics.height();
    const QString bytes = index.data(AppListModel::bytesRole).toString();
    p->save();
    if (index.data(AppListModel::kindRole).toInt() == AppListModel::heading) {
        QFont bold = opt.font;
        bold.setWeight(QFont::DemiBold);
        p->setFont(bold);
        p->setPen(opt.palette.color(QPalette::Text));
        const QRect text(r.left() + 10, r.bottom() - line - 6, r.width() - 20, line);
        p->drawText(text, Qt::AlignLeft | Qt::AlignVCenter, opt.text);
        p->drawText(text, Qt::AlignRight | Qt::AlignVCenter, bytes);
        p->setPen(opt.palette.color(QPalette::Mid));
        p->drawLine(r.left() + 10, r.bottom(), r.right() - 10, r.bottom());
        p->restore();
        return;
    }
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &opt, p, widget);
    const bool selected = opt.state & QStyle::State_Selected;
    const QColor text = opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QRect body(r.left() + 10, r.top() + 8, r.width() - sizeColumn - 20, 2 * line);
    QFont title = opt.font;
    title.setWeight(QFont::Medium);
    p->setFont(title);
    p->setPen(text);
    p->drawText(QRect(body.left(), body.top(), body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                QFontMetrics(title).elidedText(opt.text, Qt::ElideRight, body.width()));
    const QRect size(r.right() - sizeColumn, body.top(), sizeColumn - 10, line);
    p->drawText(size, Qt::AlignRight | Qt::AlignVCenter, bytes);
    p->setFont(opt.font);
    p->setPen(selected ? text : Theme::muted());
    p->drawText(QRect(body.left(), body.top() + line, body.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                opt.fontMetrics.elidedText(index.data(AppListModel::detailRole).toString(), Qt::ElideRight, body.width()));
    // The app and what it left, against the largest app, under the size.
    if (index.data(AppListModel::kindRole).toInt() == AppListModel::app) {
        const QRectF bar(size.right() - barWidth, body.top() + line + line / 2 - 2, barWidth, 5);
        const double own = index.data(AppListModel::appShareRole).toDouble();
        const double left = index.data(AppListModel::leftoverShareRole).toDouble();
        p->setRenderHint(QPainter::Antialiasing);
        p->setPen(Qt::NoPen);
        p->setBrush(Theme::track());
        p->drawRoundedRect(bar, 2.5, 2.5);
        const double ownWidth = std::max(own > 0 ? 2.0 : 0.0, bar.width() * own);
        const double leftWidth = std::min(bar.width() - ownWidth, std::max(left > 0 ? 2.0 : 0.0, bar.width() * left));
        p->setBrush(Theme::paint(Paint::sky));
        p->drawRoundedRect(QRectF(bar.left(), bar.top(), ownWidth, bar.height()), 2.5, 2.5);
        if (leftWidth > 0) {
            p->setBrush(Theme::paint(Paint::peach));
            p->drawRoundedRect(QRectF(bar.left() + ownWidth, bar.top(), leftWidth, bar.height()), 2.5, 2.5);
        }
    }
    p->restore();
}
