#include "ui/pages/system_page.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/card.h"
#include "ui/widgets/page_body.h"
#include "ui/widgets/labels.h"
#include "ui/widgets/size_bar.h"

SystemPage::SystemPage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), figure_(new QLabel), line_(Labels::muted(nullptr)), rows_(new QGridLayout),
      snapshots_(Labels::muted(nullptr)), fold_(new QTimer(this)) {
    const auto [body, layout] = PageBody::scrolling(this, tr("System"), Theme::line);
    line_->setParent(body);
    line_->setWordWrap(true);
    layout->addWidget(line_);
    layout->addSpacing(Theme::line);

    auto* card = new Card(body);
    auto* box = new QVBoxLayout(card);
    box->setSpacing(Theme::line);
    figure_->setParent(card);
    figure_->setFont(Theme::figureFont());
    box->addWidget(figure_);
    box->addSpacing(Theme::line);
    rows_->setHorizontalSpacing(Theme::gap);
    rows_->setVerticalSpacing(Theme::line + 2);
    rows_->setColumnStretch(1, 3);  // the words get room to stay on two lines
    rows_->setColumnStretch(2, 2);
    box->addLayout(rows_);
    layout->addWidget(card);
    snapshots_->setParent(body);
    snapshots_->setWordWrap(true);
    layout->addWidget(snapshots_);
    layout->addStretch();

    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &SystemPage::refresh);
    for (auto changed : {&Model::scanChanged, &Model::scanningChanged}) connect(&model_, changed, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void SystemPage::refresh() {
    Labels::clear(rows_);
    const std::optional<ScanResult>& scan = model_.scan();
    if (!scan) {
        figure_->setText(model_.scanning() ? tr("Measuring…") : tr("Not scanned yet"));
        line_->setText(tr("System Data is the used space that no other slice of the disk bar explains."));
        snapshots_->hide();
        return;
    }
    line_->setText(tr("The used space that no other slice of the disk bar explains, and what it is made of. "
                      "Sizes marked ≈ are estimates."));
    QList<qint64> values;
    qint64 largest = 1;
    for (const SystemPart& part : scan->system) {
        values.append(part.bytes);
        largest = std::max(largest, part.bytes);
    }
    const auto [texts, total] = Fmt::parts(values);  // rounded so that they add up
    figure_->setText(tr("System Data: %1").arg(scan->system.isEmpty() ? Fmt::bytes(scan->systemTotal) : total));
    for (int i = 0; i < scan->system.size(); ++i) {
        const SystemPart& part = scan->system[i];
        rows_->addWidget(Labels::swatch(this, Theme::paint(part.paint)), i, 0, Qt::AlignTop);
        auto* words = new QLabel(QStringLiteral("%1<br><span style=\"font-size: small; opacity: 0.7\">%2</span>")
                                     .arg(part.name.toHtmlEscaped(), part.action.toHtmlEscaped()),
                                 this);
        words->setTextFormat(Qt::RichText);
        words->setWordWrap(true);
        rows_->addWidget(words, i, 1);
        rows_->addWidget(new SizeBar(double(part.bytes) / double(largest), Theme::paint(part.paint), this), i, 2);
        rows_->addWidget(Labels::number(this, (part.estimated ? QStringLiteral("≈ ") : QString()) + texts.value(i)), i, 3);
        // A row that Clean can clear takes the user there.
        if (part.action.contains(QLatin1String("Clean"))) {
            auto* open = new QPushButton(tr("Open Clean"), this);
            connect(open, &QPushButton::clicked, this, [this] { model_.setPage(Page::clean); });
            rows_->addWidget(open, i, 4);
        }
    }
    if (scan->system.isEmpty()) rows_->addWidget(Labels::muted(this, tr("Nothing to explain: every used byte is in another slice.")), 0, 1);
    QStringList extra;
    if (!scan->snapshots.isEmpty())
        extra << tr("Local snapshots: %1.").arg(scan->snapshots.join(QStringLiteral(", ")));
    snapshots_->setText(extra.join(QLatin1Char(' ')));
    snapshots_->setVisible(!extra.isEmpty());
}

void SystemPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // Swatches and bars carry the palette's paints: draw them again in the new one.
    if (event->type() == QEvent::PaletteChange) fold_->start();
}
