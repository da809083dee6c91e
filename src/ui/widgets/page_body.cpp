#include "ui/widgets/page_body.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/theme/theme.h"

namespace PageBody {

Parts scrolling(QWidget* page, const QString& title, int spacing) {
    auto* outer = new QVBoxLayout(page);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea(page);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    outer->addWidget(scroll);
    auto* body = new QWidget;
    scroll->setWidget(body);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(spacing);
    auto* heading = new QLabel(title, body);
    heading->setFont(Theme::titleFont());
    layout->addWidget(heading);
    return {body, layout};
}

}  // namespace PageBody
