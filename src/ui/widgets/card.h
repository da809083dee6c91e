#pragma once
// A block of a page on a softly rounded panel.

#include <QPainter>
#include <QWidget>

#include "ui/theme/theme.h"

class Card : public QWidget {
public:
    explicit Card(QWidget* parent = nullptr) : QWidget(parent) {
        setContentsMargins(Theme::gap, Theme::gap - 4, Theme::gap, Theme::gap - 4);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(palette().color(QPalette::Mid), 1));
        p.setBrush(palette().color(QPalette::Base));
        p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius + 2, Theme::radius + 2);
    }
};
