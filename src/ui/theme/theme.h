#pragma once
// Every colour, font and distance of the window: the night and paper palettes on Fusion, "follow
// the system", and the nine paints of the disk bar in both. Pages read them here and nowhere else.

#include <QColor>
#include <QFont>

#include "core/kinds.h"
#include "model/page.h"

namespace Theme {

enum class Scheme { night, paper };

// Outer margin of a page, the gap between blocks and between lines of a block.
constexpr int margin = 28;
constexpr int gap = 18;
constexpr int line = 6;
constexpr int sidebarWidth = 220;
constexpr int radius = 6;
constexpr int windowWidth = 1280;
constexpr int windowHeight = 800;

// Remembers the desktop's own palette; call once, before the first apply().
void rememberSystem();
// Installs Fusion and the palette `appearance` names; every widget repaints.
void apply(Appearance appearance);
Scheme current();
// The palette of a scheme, and which scheme the desktop's palette resembles.
Scheme systemScheme();

QColor paint(Paint paint, Scheme scheme = current());
// The colour that marks a bucket wherever rows are grouped by it.
QColor bucket(Bucket bucket);
// The badge of how sure Quarle is that a leftover belongs to its app.
QColor confidence(Confidence confidence);
QColor muted();   // secondary text
QColor accent();  // buttons that act, the selected page
QColor panel();   // the sidebar, cards
QColor track();   // the free part of bars

QFont titleFont();    // a page's heading
QFont figureFont();   // a large number
QFont smallFont();    // notes and the sidebar's foot

}  // namespace Theme
