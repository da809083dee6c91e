#include "ui/dialogs/welcome_sheet.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/model.h"
#include "ui/theme/theme.h"

WelcomeSheet::WelcomeSheet(Model& model, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Welcome to Quarle"));
    setWindowModality(Qt::WindowModal);
    setFixedWidth(560);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin + 8, Theme::margin + 4, Theme::margin + 8, Theme::gap);
    layout->setSpacing(Theme::line);
    auto* title = new QLabel(tr("Welcome to Quarle"), this);
    title->setFont(Theme::titleFont());
    layout->addWidget(title);
    auto* lead = new QLabel(tr("Quarle shows where the space on your disk went, and clears what comes back by itself."), this);
    lead->setForegroundRole(QPalette::PlaceholderText);
    lead->setWordWrap(true);
    layout->addWidget(lead);
    layout->addSpacing(Theme::gap);

    const std::pair<Paint, std::pair<QString, QString>> points[] = {
        {Paint::sky, {tr("Scanning only reads"), tr("Quarle measures your home folder and the disk. Nothing moves until you say so.")}},
        {Paint::mint, {tr("Everything goes to the Trash first"), tr("What you clear waits in the Trash, and History puts each item back exactly where it was.")}},
        {Paint::peach, {tr("Your Trash stays yours"), tr("Quarle empties only what it moved there, after the days you choose in Settings.")}},
        {Paint::lavender, {tr("You decide what goes"), tr("Rows that need a look start unticked. Projects you built lately are kept.")}},
    };
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(Theme::gap - 4);
    grid->setVerticalSpacing(2);
    int row = 0;
    for (const auto& [paint, text] : points) {
        auto* dot = new QLabel(this);
        QPixmap pixmap(10, 10);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(Theme::paint(paint));
        p.drawEllipse(QRectF(0, 0, 10, 10));
        dot->setPixmap(pixmap);
        dot->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        auto* head = new QLabel(text.first, this);
        QFont f = head->font();
        f.setWeight(QFont::DemiBold);
        head->setFont(f);
        auto* body = new QLabel(text.second, this);
        body->setWordWrap(true);
        body->setForegroundRole(QPalette::PlaceholderText);
        body->setContentsMargins(0, 0, 0, Theme::line * 2);
        grid->addWidget(dot, row, 0);
        grid->addWidget(head, row, 1);
        grid->addWidget(body, row + 1, 1);
        row += 2;
    }
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
    layout->addSpacing(Theme::line);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* start = buttons->addButton(tr("Get Started"), QDialogButtonBox::AcceptRole);
    start->setDefault(true);
    layout->addWidget(buttons);
    setFixedHeight(heightForWidth(width()));  // wrapped lines at their own height, no gaps between
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    // Return (the default button) and Escape both close it; either way it was read.
    connect(this, &QDialog::finished, &model, &Model::closeWelcome);
}
