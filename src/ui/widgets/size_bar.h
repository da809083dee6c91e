#pragma once
// A thin bar showing one size against the largest of its list.

#include <QPainter>
#include <QWidget>

#include "ui/theme/theme.h"

class SizeBar : public QWidget {
public:
    SizeBar(double fraction, QColor colour, QWidget* parent = nullptr)
        : QWidget(parent), fraction_(std::clamp(fraction, 0.0, 1.0)), colour_(colour) {
        setFixedHeight(6);
        setMinimumWidth(60);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        const QRectF r(rect());
        p.setBrush(Theme::track());
        p.drawRoundedRect(r, 3, 3);
        if (fraction_ <= 0) return;
        p.setBrush(colour_);
        p.drawRoundedRect(QRectF(r.left(), r.top(), std::max(r.height(), r.width() * fraction_), r.height()), 3, 3);
    }

private:
    double fraction_;
    QColor colour_;
};
