#include "ui/widgets/details_pane.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "core/paths.h"
#include "core/space_node.h"
#include "model/space_details.h"
#include "ui/widgets/labels.h"

DetailsPane::DetailsPane(QWidget* parent)
    : Card(parent), name_(new QLabel(this)), size_(new QLabel(this)), grid_(new QGridLayout), reveal_(new QPushButton(tr("Show in file manager"), this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(Theme::line);
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    name_->setFont(bold);
    name_->setWordWrap(true);
    name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    size_->setFont(Theme::figureFont());
    grid_->setHorizontalSpacing(Theme::gap);
    grid_->setVerticalSpacing(Theme::line - 2);
    grid_->setColumnStretch(1, 1);
    layout->addWidget(name_);
    layout->addWidget(size_);
    layout->addLayout(grid_);
    layout->addSpacing(Theme::line);
    layout->addWidget(reveal_, 0, Qt::AlignLeft);
    reveal_->setAccessibleName(tr("Show in file manager"));
    connect(reveal_, &QPushButton::clicked, this, [this] {
        if (!path_.isEmpty()) emit reveal(path_);
    });
    describe(nullptr, std::nullopt, 0, 0);
}

void DetailsPane::addLine(const QString& label, const QString& value) {
    const int row = lines_++;
    grid_->addWidget(Labels::muted(this, label), row, 0, Qt::AlignLeft | Qt::AlignTop);
    auto* text = new QLabel(value, this);
    text->setWordWrap(true);
    grid_->addWidget(text, row, 1);
}

void DetailsPane::describe(const SpaceNode* node, const std::optional<SpaceDetails>& details, qint64 clearable, int items) {
    Labels::clear(grid_);
    lines_ = 0;
    path_ = node ? node->path : QString();
    reveal_->setEnabled(node != nullptr);
    if (!node) {
        name_->setText(tr("Nothing selected"));
        size_->setText(QString());
        addLine(QString(), tr("Choose a folder or file to see what it holds."));
        return;
    }
    name_->setText(node->name);
    size_->setText(Fmt::bytes(node->bytes));
    const bool known = details && details->path == node->path;
    addLine(tr("Kind"), known ? details->kind : node->isDir ? tr("Folder") : QStringLiteral("…"));
    addLine(tr("Where"), Fmt::path(Paths::parentOf(node->path)));
    if (node->isDir && items > 0) addLine(tr("Holds"), Fmt::count(items, tr("item")));
    const std::optional<QDateTime> modified = known && details->modified ? details->modified : node->modified;
    if (modified) addLine(tr("Modified"), Fmt::day(*modified));
    if (known && details->created) addLine(tr("Created"), Fmt::day(*details->created));
    if (known && details->opened) addLine(tr("Last opened"), Fmt::day(*details->opened));
    if (clearable > 0) addLine(tr("In Clean"), tr("%1 ticked to clear").arg(Fmt::bytes(clearable)));
    if (!node->note.isEmpty()) addLine(tr("Note"), node->note);
}

QStringList DetailsPane::lines() const {
    QStringList out{name_->text(), size_->text()};
    for (int row = 0; row < lines_; ++row) {
        QStringList cells;
        for (int col = 0; col < 2; ++col)
            if (QLayoutItem* item = grid_->itemAtPosition(row, col))
                if (auto* label = qobject_cast<QLabel*>(item->widget())) cells.append(label->text());
        if (!cells.isEmpty()) out.append(cells.join(QLatin1Char('\t')));
    }
    return out;
}
