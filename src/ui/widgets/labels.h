#pragma once
// The small pieces the pages build their lists and legends from.

#include <QColor>
#include <QString>

class QGridLayout;
class QLabel;
class QWidget;

namespace Labels {

// Text in the palette's dimmed colour.
QLabel* muted(QWidget* parent, const QString& text = {});
// A figure, right-aligned so that a column of them lines up.
QLabel* number(QWidget* parent, const QString& text);
// A small rounded square of a paint, for a legend.
QLabel* swatch(QWidget* parent, const QColor& colour);
// Removes and deletes everything in the grid.
void clear(QGridLayout* grid);

}  // namespace Labels
