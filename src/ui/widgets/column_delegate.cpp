#include "ui/widgets/column_delegate.h"

#include <QPainter>
#include <QPainterPath>

#include "ui/theme/theme.h"
#include "ui/widgets/column_model.h"

namespace {

constexpr int markWidth = 16;
constexpr int arrowWidth = 14;

void folderMark(QPainter* p, const QRectF& r, const QColor& colour) {
    QPainterPath tab;
    tab.addRoundedRect(QRectF(r.left(), r.top(), r.width() * 0.45, r.height() * 0.4), 1.5, 1.5);
    QPainterPath body;
    body.addRoundedRect(QRectF(r.left(), r.top() + r.height() * 0.2, r.width(), r.height() * 0.8), 2, 2);
    p->fillPath(tab.united(body), colour);
}

void fileMark(QPainter* p, const QRectF& r, const QColor& colour) {
    const qreal fold = r.width() * 0.35;
    QPainterPath page;
    page.moveTo(r.left(), r.top());
    page.lineTo(r.right() - fold, r.top());
    page.lineTo(r.right(), r.top() + fold);
    page.lineTo(r.right(), r.bottom());
    page.lineTo(r.left(), r.bottom());
    page.closeSubpath();
    p->setPen(QPen(colour, 1.2));
    p->setBrush(Qt::NoBrush);
    p->drawPath(page);
}

}  // namespace

QSize ColumnDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {200, option.fontMetrics.height() + 16};
}

void ColumnDelegate::paint(QPainter* p, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QRect r = opt.rect.adjusted(4, 1, -4, -1);
    const QFontMetrics& fm = opt.fontMetrics;
    const bool selected = opt.state & QStyle::State_Selected;
    // The column that holds the selection shows it in the accent; the folders on the way to it, quietly.
    const bool here = opt.widget && opt.widget->property("current").toBool();
    const QColor text = selected && here ? opt.palette.color(QPalette::HighlightedText) : opt.palette.color(QPalette::Text);
    const QColor dim = selected && here ? text : Theme::muted();
    const bool isDir = index.data(ColumnModel::isDirRole).toBool();
    p->save();
    p->setRenderHint(QPainter::Antialiasing);
    if (selected) {
        p->setPen(Qt::NoPen);
        p->setBrush(here ? opt.palette.color(QPalette::Highlight) : opt.palette.color(QPalette::Mid));
        p->drawRoundedRect(r, Theme::radius - 2, Theme::radius - 2);
    }
    const int line = fm.height();
    const int top = r.top() + 5;
    const QRectF mark(r.left() + 8, top + (line - 12) / 2.0, 14, 12);
    if (isDir) folderMark(p, mark, selected && here ? text : Theme::paint(Paint::sky));
    else fileMark(p, mark.adjusted(2, -1, -2, 1), dim);

    const int left = r.left() + 8 + markWidth + 6;
    int right = r.right() - 6;
    if (isDir) {
        // An arrow: this row opens to a column of its own.
        p->setPen(QPen(dim, 1.5));
        const QPointF c(right - arrowWidth / 2.0, top + line / 2.0);
        p->drawPolyline(QPolygonF({c + QPointF(-2, -4), c + QPointF(2, 0), c + QPointF(-2, 4)}));
    }
    right -= arrowWidth;
    // Sizes in DejaVu's digits, which are all one width: a column of them lines up.
    const QString size = index.data(ColumnModel::bytesRole).toString();
    const int sizeWidth = fm.horizontalAdvance(size);
    p->setPen(selected && here ? text : dim);
    p->drawText(QRect(right - sizeWidth, top, sizeWidth, line), Qt::AlignRight | Qt::AlignVCenter, size);
    int nameRight = right - sizeWidth - 10;
    if (index.data(ColumnModel::clearableRole).toLongLong() > 0) {
        // A dot in Clean's colour: something in here is ticked to be cleared.
        p->setPen(Qt::NoPen);
        p->setBrush(Theme::bucket(Bucket::now));
        p->drawEllipse(QPointF(nameRight - 3, top + line / 2.0), 3.5, 3.5);
        nameRight -= 14;
    }
    QString name = opt.text;
    const QString note = index.data(ColumnModel::noteRole).toString();
    const int noteWidth = note.isEmpty() ? 0 : fm.horizontalAdvance(note) + 8;
    const int nameWidth = std::max(20, nameRight - left - noteWidth);
    name = fm.elidedText(name, Qt::ElideMiddle, nameWidth);
    p->setPen(text);
    p->drawText(QRect(left, top, nameWidth, line), Qt::AlignLeft | Qt::AlignVCenter, name);
    if (!note.isEmpty()) {
        QFont italic = opt.font;
        italic.setItalic(true);
        p->setFont(italic);
        p->setPen(dim);
        p->drawText(QRect(left + fm.horizontalAdvance(name) + 8, top, noteWidth, line), Qt::AlignLeft | Qt::AlignVCenter, note);
    }
    // The share of the folder, under the name and size.
    const double fraction = index.data(ColumnModel::fractionRole).toDouble();
    const QRectF bar(left, r.bottom() - 5, right - left, 3);
    p->setPen(Qt::NoPen);
    p->setBrush(selected && here ? QColor(255, 255, 255, 60) : Theme::track());
    p->drawRoundedRect(bar, 1.5, 1.5);
    if (fraction > 0) {
        p->setBrush(selected && here ? text : Theme::paint(isDir ? Paint::sky : Paint::lavender));
        p->drawRoundedRect(QRectF(bar.left(), bar.top(), std::max(3.0, bar.width() * std::min(fraction, 1.0)), bar.height()), 1.5, 1.5);
    }
    p->restore();
}
