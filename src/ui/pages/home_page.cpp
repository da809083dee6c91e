#include "ui/pages/home_page.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/card.h"
#include "ui/widgets/disk_bar.h"

namespace {

QLabel* muted(QWidget* parent, const QString& text = {}) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QLabel* number(QWidget* parent, const QString& text) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

// A small square of a paint, for the legend.
QLabel* swatch(QWidget* parent, const QColor& colour) {
    QPixmap pixmap(12, 12);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawRoundedRect(QRectF(0, 0, 12, 12), 3, 3);
    auto* label = new QLabel(parent);
    label->setPixmap(pixmap);
    label->setFixedWidth(16);
    return label;
}

void clear(QGridLayout* grid) {
    while (QLayoutItem* item = grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

}  // namespace

HomePage::HomePage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), heading_(new QLabel(this)), figures_(muted(this)), bar_(new DiskBar(this)),
      legend_(new QGridLayout), scanTitle_(new QLabel(this)), scanLine_(muted(this)),
      scan_(new QPushButton(this)), early_(new QGridLayout), clearFigure_(new QLabel(this)),
      clearLine_(muted(this)), clean_(new QPushButton(tr("Review in Clean"), this)), live_(new QTimer(this)),
      fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    heading_->setFont(Theme::titleFont());
    layout->addWidget(heading_);
    layout->addWidget(figures_);
    layout->addSpacing(Theme::gap);
    layout->addWidget(bar_);
    layout->addSpacing(Theme::line);
    legend_->setHorizontalSpacing(Theme::line);
    legend_->setVerticalSpacing(Theme::line);
    layout->addLayout(legend_);
    layout->addSpacing(Theme::gap);

    auto* cards = new QHBoxLayout;
    cards->setSpacing(Theme::gap);
    auto* scanCard = new Card(this);
    auto* scanBox = new QVBoxLayout(scanCard);
    scanBox->setSpacing(Theme::line);
    scanTitle_->setFont(Theme::figureFont());
    scanBox->addWidget(scanTitle_);
    scanBox->addWidget(scanLine_);
    early_->setHorizontalSpacing(Theme::gap);
    scanBox->addLayout(early_);
    scanBox->addStretch();
    auto* scanRow = new QHBoxLayout;
    scanRow->addStretch();
    scan_->setAccessibleName(tr("Scan"));
    scanRow->addWidget(scan_);
    scanBox->addLayout(scanRow);

    auto* clearCard = new Card(this);
    auto* clearBox = new QVBoxLayout(clearCard);
    clearBox->setSpacing(Theme::line);
    clearFigure_->setFont(Theme::figureFont());
    clearLine_->setWordWrap(true);
    clearBox->addWidget(clearFigure_);
    clearBox->addWidget(clearLine_);
    clearBox->addStretch();
    auto* clearRow = new QHBoxLayout;
    clearRow->addStretch();
    clean_->setDefault(true);
    clearRow->addWidget(clean_);
    clearBox->addLayout(clearRow);
    cards->addWidget(scanCard, 1);
    cards->addWidget(clearCard, 1);
    layout->addLayout(cards, 1);

    connect(scan_, &QPushButton::clicked, this, [this] { model_.rescan(false); });
    connect(clean_, &QPushButton::clicked, this, [this] { model_.setPage(Page::clean); });
    // Live figures at most four times a second, however often the scan counts.
    live_->setInterval(250);
    connect(live_, &QTimer::timeout, this, &HomePage::refreshLive);
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &HomePage::refresh);
    for (auto signal : {&Model::scanChanged, &Model::scanningChanged, &Model::earlyChanged, &Model::volumeChanged,
                        &Model::tickedChanged, &Model::picksChanged, &Model::hiddenRowsChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void HomePage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();  // a hidden page catches up when it is shown
}

void HomePage::refresh() {
    const Volume& v = model_.volume();
    heading_->setText(v.name.isEmpty() ? tr("Your disk") : v.name);
    QString text = v.total > 0 ? tr("%1 free of %2").arg(Fmt::bytes(v.free), Fmt::bytes(v.total)) : QString();
    if (v.total > 0 && v.purgeable() > 0) text += tr("  ·  %1 more the system can free").arg(Fmt::bytes(v.purgeable()));
    figures_->setText(text);
    refreshLegend();
    refreshScan();
    refreshClear();
}

void HomePage::refreshLegend() {
    clear(legend_);
    const Volume& v = model_.volume();
    QList<DiskPart> strata;
    if (model_.scan())
        for (const DiskPart& part : model_.scan()->strata)
            if (part.bytes > 0) strata.append(part);
    bar_->setParts(strata, v.total);
    if (strata.isEmpty()) return;
    // The slices, then the free space, rounded so that they add up to the disk's size shown.
    QList<qint64> values;
    for (const DiskPart& part : strata) values.append(part.bytes);
    values.append(v.free);
    const auto [texts, total] = Fmt::parts(values);
    const int columns = 3;
    for (int i = 0; i < values.size(); ++i) {
        const bool free = i == strata.size();
        const int row = i / columns, col = (i % columns) * 4;
        legend_->addWidget(swatch(this, free ? Theme::track() : Theme::paint(strata[i].paint)), row, col);
        legend_->addWidget(new QLabel(free ? tr("Free") : strata[i].name, this), row, col + 1);
        legend_->addWidget(number(this, texts[i]), row, col + 2);
        legend_->setColumnMinimumWidth(col + 3, Theme::margin);
        legend_->setColumnStretch(col + 1, 1);
    }
    Q_UNUSED(total);
}

void HomePage::refreshScan() {
    clear(early_);
    const bool scanning = model_.scanning();
    const std::optional<ScanResult>& scan = model_.scan();
    scan_->setText(scanning ? tr("Scanning…") : scan ? tr("Rescan") : tr("Scan"));
    scan_->setEnabled(!scanning);
    if (scanning) {
        scanTitle_->setText(tr("Scanning your home…"));
        live_->start();
        refreshLive();
        // Rows appear as their rules finish; the old result stays on the other pages meanwhile.
        int row = 0;
        for (const EarlyRow& early : model_.early()) {
            auto* title = new QLabel(early.done ? early.title : early.title + QStringLiteral(" …"), this);
            early_->addWidget(title, row, 0);
            early_->addWidget(number(this, Fmt::bytes(early.bytes)), row, 1);
            if (++row == 8) break;
        }
        early_->setColumnStretch(0, 1);
        return;
    }
    live_->stop();
    if (!scan) {
        scanTitle_->setText(tr("Not scanned yet"));
        scanLine_->setText(tr("Quarle measures your home folder and finds what can go."));
        return;
    }
    scanTitle_->setText(tr("Last scan: %1").arg(Fmt::day(scan->date)));
    scanLine_->setText(tr("%1 in %2 s").arg(Fmt::count(scan->files, QStringLiteral("file")))
                           .arg(scan->seconds, 0, 'f', 1));
}

void HomePage::refreshLive() {
    scanLine_->setText(tr("%1  ·  %2").arg(Fmt::count(model_.scannedFiles(), QStringLiteral("file")),
                                           Fmt::bytes(model_.scannedBytes())));
}

void HomePage::refreshClear() {
    const std::optional<ScanResult>& scan = model_.scan();
    clean_->setEnabled(scan.has_value());
    if (!scan) {
        clearFigure_->setText(tr("Nothing found yet"));
        clearLine_->setText(tr("What can be cleared shows here after the scan."));
        return;
    }
    clearFigure_->setText(tr("%1 can be cleared now").arg(Fmt::bytes(scan->total(Bucket::now))));
    QStringList more;
    if (scan->total(Bucket::call) > 0)
        more << tr("%1 more is your call").arg(Fmt::bytes(scan->total(Bucket::call)));
    if (scan->total(Bucket::keep) > 0)
        more << tr("%1 is kept for you").arg(Fmt::bytes(scan->total(Bucket::keep)));
    clearLine_->setText(more.isEmpty() ? tr("Nothing else was found.") : more.join(tr(", ")) + QLatin1Char('.'));
}

QString HomePage::figures() const { return figures_->text(); }
QString HomePage::scanLine() const { return scanTitle_->text() + QLatin1Char('\n') + scanLine_->text(); }

QStringList HomePage::legend() const {
    QStringList out;
    for (int i = 0; i < legend_->count(); ++i)
        if (auto* label = qobject_cast<QLabel*>(legend_->itemAt(i)->widget()); label && !label->text().isEmpty())
            out << label->text();
    return out;
}

QStringList HomePage::earlyRows() const {
    QStringList out;
    for (int i = 0; i < early_->count(); i += 2)
        out << qobject_cast<QLabel*>(early_->itemAt(i)->widget())->text();
    return out;
}
