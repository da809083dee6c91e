#pragma once
// The body of a page that scrolls when the window is short: the page's margins, then its title.

class QString;
class QVBoxLayout;
class QWidget;

namespace PageBody {

struct Parts {
    QWidget* body;        // the parent for what the page adds
    QVBoxLayout* layout;  // where it adds it, below the title
};

Parts scrolling(QWidget* page, const QString& title, int spacing);

}  // namespace PageBody
