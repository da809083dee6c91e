#include "ui/pages/home_page.h"

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
#include "ui/widgets/disk_bar.h"
#include "ui/widgets/labels.h"
#include "ui/widgets/size_bar.h"

using Labels::clear;
using Labels::muted;
using Labels::number;
using Labels::swatch;

namespace {

constexpr int rowsShown = 10;  // rows listed under what can be cleared; the rest are counted

// A card's own column: its heading figure, its line, then what the caller adds.
QVBoxLayout* column(Card* card) {
    auto* box = new QVBoxLayout(card);
    box->setSpacing(Theme::line);
    return box;
}

void buttonRow(QVBoxLayout* box, QPushButton* button) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(button);
    box->addLayout(row);
}

}  // namespace

HomePage::HomePage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), heading_(new QLabel(this)), figures_(muted(this)), access_(new QLabel(this)),
      bar_(new DiskBar(this)), legend_(new QGridLayout), scanTitle_(new QLabel(this)), scanLine_(muted(this)),
      found_(new QGridLayout), trashFigure_(new QLabel(this)), trash_(muted(this)),
      history_(new QPushButton(tr("Open History"), this)), scan_(new QPushButton(this)), clearFigure_(new QLabel(this)),
      clearLine_(muted(this)), rows_(new QGridLayout), more_(muted(this)),
      clean_(new QPushButton(tr("Review in Clean"), this)), live_(new QTimer(this)), fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    heading_->setFont(Theme::titleFont());
    layout->addWidget(heading_);
    layout->addWidget(figures_);
    access_->setWordWrap(true);
    access_->setAccessibleName(tr("Access"));
    layout->addSpacing(Theme::line);
    layout->addWidget(access_);
    layout->addSpacing(Theme::gap - Theme::line);
    bar_->setMinimumHeight(26);
    layout->addWidget(bar_);
    layout->addSpacing(Theme::line);
    legend_->setHorizontalSpacing(Theme::line);
    legend_->setVerticalSpacing(Theme::line);
    layout->addLayout(legend_);
    layout->addSpacing(Theme::gap);

    // What can be cleared: the larger card, since it is what most people come for.
    auto* clearCard = new Card(this);
    auto* clearBox = column(clearCard);
    clearFigure_->setFont(Theme::figureFont());
    clearLine_->setWordWrap(true);
    clearBox->addWidget(clearFigure_);
    clearBox->addWidget(clearLine_);
    clearBox->addSpacing(Theme::line * 2);
    rows_->setHorizontalSpacing(Theme::gap);
    rows_->setVerticalSpacing(Theme::line * 2);
    rows_->setColumnStretch(1, 1);
    clearBox->addLayout(rows_);
    clearBox->addWidget(more_);
    clearBox->addStretch();
    clean_->setDefault(true);
    buttonRow(clearBox, clean_);

    auto* scanCard = new Card(this);
    auto* scanBox = column(scanCard);
    scanTitle_->setFont(Theme::figureFont());
    scanBox->addWidget(scanTitle_);
    scanBox->addWidget(scanLine_);
    scanBox->addSpacing(Theme::line * 2);
    found_->setHorizontalSpacing(Theme::line * 2);
    found_->setVerticalSpacing(2);
    found_->setColumnStretch(1, 1);
    scanBox->addLayout(found_);
    scanBox->addStretch();
    scan_->setAccessibleName(tr("Scan"));
    buttonRow(scanBox, scan_);

    // What waits in the Trash, and the way to put it back.
    auto* trashCard = new Card(this);
    auto* trashBox = column(trashCard);
    trashFigure_->setFont(Theme::figureFont());
    trashBox->addWidget(trashFigure_);
    trash_->setWordWrap(true);
    trashBox->addWidget(trash_);
    trashBox->addSpacing(Theme::line);
    buttonRow(trashBox, history_);

    auto* right = new QVBoxLayout;
    right->setSpacing(Theme::gap);
    right->addWidget(scanCard, 1);
    right->addWidget(trashCard);
    auto* cards = new QHBoxLayout;
    cards->setSpacing(Theme::gap);
    cards->addWidget(clearCard, 3);
    cards->addLayout(right, 2);
    layout->addLayout(cards, 1);

    connect(scan_, &QPushButton::clicked, this, [this] { model_.rescan(false); });
    connect(clean_, &QPushButton::clicked, this, [this] { model_.setPage(Page::clean); });
    connect(history_, &QPushButton::clicked, this, [this] { model_.setPage(Page::history); });
    // Live figures at most four times a second, however often the scan counts.
    live_->setInterval(250);
    connect(live_, &QTimer::timeout, this, &HomePage::refreshLive);
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &HomePage::refresh);
    for (auto signal : {&Model::scanChanged, &Model::scanningChanged, &Model::earlyChanged, &Model::volumeChanged,
                        &Model::tickedChanged, &Model::picksChanged, &Model::hiddenRowsChanged,
                        &Model::historyChanged, &Model::fullDiskAccessChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void HomePage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();  // a hidden page catches up when it is shown
}

void HomePage::refresh() {
    const Volume& v = model_.volume();
    // A Linux volume is named by where it is mounted, which says little: "/" is just the disk.
    const bool mountPoint = v.name.isEmpty() || v.name.startsWith(QLatin1Char('/'));
    heading_->setText(mountPoint ? tr("Your disk") : v.name);
    QString text = v.total > 0 ? tr("%1 free of %2").arg(Fmt::bytes(v.free), Fmt::bytes(v.total)) : QString();
    if (mountPoint && v.name.size() > 1) text += tr("  ·  mounted at %1").arg(v.name);
    if (v.total > 0 && v.purgeable() > 0) text += tr("  ·  %1 more the system can free").arg(Fmt::bytes(v.purgeable()));
    figures_->setText(text);
    // On Linux the one thing that can be kept from Quarle is the Trash folder: say what that changes.
    const bool locked = model_.fullDiskAccess() == false;
    access_->setVisible(locked);
    access_->setText(locked ? tr("Quarle can't read your Trash folder, so the Trash counts only what Quarle moved "
                                 "there. Let your user read it, and Quarle looks again when you come back to this window.")
                            : QString());
    refreshLegend();
    refreshScan();
    refreshClear();
    refreshFound();
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
    const QStringList texts = Fmt::parts(values).first;
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
}

void HomePage::refreshScan() {
    const bool scanning = model_.scanning();
    const std::optional<ScanResult>& scan = model_.scan();
    scan_->setText(scanning ? tr("Scanning…") : scan ? tr("Scan Again") : tr("Scan"));
    scan_->setEnabled(!scanning);
    if (scanning) {
        scanTitle_->setText(tr("Scanning your home…"));
        live_->start();
        refreshLive();
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
    clear(rows_);
    more_->hide();
    const std::optional<ScanResult>& scan = model_.scan();
    clean_->setEnabled(scan.has_value());
    // While the first scan runs, its rows appear as their rules finish.
    if (model_.scanning() && !scan) {
        clearFigure_->setText(tr("Looking for what can go…"));
        clearLine_->setText(tr("Each kind of file shows here as soon as it is measured."));
        int row = 0;
        for (const EarlyRow& early : model_.early()) {
            if (row == rowsShown) break;
            rows_->addWidget(new QLabel(early.title, this), row, 0);
            rows_->addWidget(new SizeBar(0, Theme::bucket(early.bucket), this), row, 1);
            rows_->addWidget(early.done ? number(this, Fmt::bytes(early.bytes)) : muted(this, tr("measuring…")), row, 2);
            ++row;
        }
        return;
    }
    if (!scan) {
        clearFigure_->setText(tr("Nothing found yet"));
        clearLine_->setText(tr("What can be cleared shows here after the scan."));
        return;
    }
    clearFigure_->setText(tr("%1 can be cleared now").arg(Fmt::bytes(scan->total(Bucket::now))));
    // The other buckets are on the scan's card; this line says what a click on Clean would move.
    qint64 ticked = 0;
    for (const Finding& f : model_.clearing(false)) ticked += f.bytes;
    clearLine_->setText(ticked > 0 ? tr("%1 is ticked in Clean, ready to move to the Trash.").arg(Fmt::bytes(ticked))
                                   : tr("Nothing is ticked in Clean yet."));
    QList<const Finding*> now;
    for (const Finding& f : scan->findings)
        if (f.bucket == Bucket::now && f.bytes > 0) now.append(&f);
    const qint64 largest = now.isEmpty() ? 1 : std::max<qint64>(now.first()->bytes, 1);
    for (int i = 0; i < now.size() && i < rowsShown; ++i) {
        auto* title = new QLabel(now[i]->title, this);
        title->setToolTip(now[i]->place);
        rows_->addWidget(title, i, 0);
        rows_->addWidget(new SizeBar(double(now[i]->bytes) / double(largest), Theme::bucket(Bucket::now), this), i, 1);
        rows_->addWidget(number(this, Fmt::bytes(now[i]->bytes)), i, 2);
    }
    if (now.size() > rowsShown) {
        more_->setText(tr("and %1 in Clean").arg(Fmt::count(now.size() - rowsShown, QStringLiteral("more row"))));
        more_->show();
    }
}

void HomePage::refreshFound() {
    clear(found_);
    const std::optional<ScanResult>& scan = model_.scan();
    if (scan) {
        // The three buckets as the Clean page groups them, rounded to add up to their sum.
        const QList<Bucket> buckets{Bucket::now, Bucket::call, Bucket::keep};
        QList<qint64> values;
        for (Bucket b : buckets) values.append(scan->total(b));
        const auto [texts, total] = Fmt::parts(values);
        const QStringList what{tr("Comes back by itself"), tr("Worth a look before it goes"),
                               tr("Yours: cleared only if you choose")};
        for (int i = 0; i < buckets.size(); ++i) {
            found_->addWidget(swatch(this, Theme::bucket(buckets[i])), 2 * i, 0);
            found_->addWidget(new QLabel(title(buckets[i]), this), 2 * i, 1);
            found_->addWidget(number(this, texts[i]), 2 * i, 2);
            auto* note = muted(this, what[i]);
            note->setFont(Theme::smallFont());
            note->setContentsMargins(0, 0, 0, Theme::line + 2);
            found_->addWidget(note, 2 * i + 1, 1, 1, 2);
        }
        auto* sum = new QLabel(tr("Found in all"), this);
        auto* figure = number(this, total);
        for (QLabel* l : {sum, figure}) {
            QFont f = l->font();
            f.setWeight(QFont::DemiBold);
            l->setFont(f);
            l->setContentsMargins(0, Theme::line, 0, 0);
        }
        found_->addWidget(sum, 6, 1);
        found_->addWidget(figure, 6, 2);
    }
    int entries = 0;
    qint64 bytes = 0;
    for (const HistoryEntry& e : model_.history())
        if (e.state == HistoryEntry::State::inTrash) {
            ++entries;
            bytes += e.bytes;
        }
    trashFigure_->setText(entries == 0 ? tr("Nothing in the Trash") : tr("%1 in the Trash").arg(Fmt::bytes(bytes)));
    trash_->setText(entries == 0 ? tr("What Quarle clears waits in the Trash, and History can put it back.")
                                 : tr("%1 of Quarle's wait there. History can put them back %2.")
                                       .arg(Fmt::count(entries, QStringLiteral("clean")), model_.keepFor()));
}

QString HomePage::figures() const { return figures_->text(); }
QString HomePage::scanLine() const { return scanTitle_->text() + QLatin1Char('\n') + scanLine_->text(); }
QString HomePage::accessLine() const { return access_->isHidden() ? QString() : access_->text(); }

QStringList HomePage::legend() const {
    QStringList out;
    for (int i = 0; i < legend_->count(); ++i)
        if (auto* label = qobject_cast<QLabel*>(legend_->itemAt(i)->widget()); label && !label->text().isEmpty())
            out << label->text();
    return out;
}

QStringList HomePage::rows() const {
    QStringList out;
    for (int r = 0; r < rows_->rowCount(); ++r)
        if (QLayoutItem* item = rows_->itemAtPosition(r, 0))
            out << qobject_cast<QLabel*>(item->widget())->text();
    return out;
}

void HomePage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // Swatches, bars and dimmed lines carry the palette's colours: draw them again in the new one.
    if (event->type() == QEvent::PaletteChange) fold_->start();
}
