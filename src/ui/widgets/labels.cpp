#include "ui/widgets/labels.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>

namespace Labels {

QLabel* muted(QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QLabel* number(QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

QLabel* swatch(QWidget* parent, const QColor& colour) {
    QPixmap pixmap(12, 12);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawRoundedRect(QRectF(0, 0, 12, 12), 3, 3);
    auto* label = new QLabel(parent);
    label->setPixmap(pixmap);
    label->setFixedWidth(16);
    return label;
}

void clear(QGridLayout* grid) {
    while (QLayoutItem* item = grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

}  // namespace Labels
