#include "ui/pages/placeholder_page.h"

#include <QLabel>
#include <QVBoxLayout>

#include "ui/theme/theme.h"

PlaceholderPage::PlaceholderPage(const QString& title, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    auto* heading = new QLabel(title, this);
    heading->setFont(Theme::titleFont());
    auto* line = new QLabel(tr("Coming with the next version."), this);
    line->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(heading);
    layout->addSpacing(Theme::line);
    layout->addWidget(line);
    layout->addStretch();
}
