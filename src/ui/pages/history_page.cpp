#include "ui/pages/history_page.h"

#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/theme/theme.h"

namespace {

constexpr int idRole = Qt::UserRole + 1;

QString stateText(const HistoryEntry& e, int keepDays) {
    switch (e.state) {
    case HistoryEntry::State::inTrash:
        return keepDays >= 1 ? QObject::tr("In the Trash until %1").arg(Fmt::emptyDay(e.date, keepDays))
                             : QObject::tr("In the Trash");
    case HistoryEntry::State::emptied: return QObject::tr("Emptied");
    case HistoryEntry::State::restored: return QObject::tr("Put back");
    case HistoryEntry::State::permanent: return QObject::tr("Removed for good: cannot be put back");
    }
    return {};
}

const HistoryEntry* entryOf(const Model& model, const QTreeWidgetItem* item) {
    if (!item) return nullptr;
    if (item->parent()) item = item->parent();
    const QUuid id = item->data(0, idRole).toUuid();
    for (const HistoryEntry& e : model.history())
        if (e.id == id) return &e;
    return nullptr;
}

}  // namespace

HistoryPage::HistoryPage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), keep_(new QLabel(this)), list_(new QTreeWidget(this)), empty_(new QLabel(this)),
      putBack_(new QPushButton(tr("Put Back"), this)), emptyNow_(new QPushButton(tr("Empty Now…"), this)),
      emptyAll_(new QPushButton(tr("Empty All of Quarle's Items…"), this)), fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    auto* heading = new QLabel(tr("History"), this);
    heading->setFont(Theme::titleFont());
    keep_->setForegroundRole(QPalette::PlaceholderText);
    keep_->setTextFormat(Qt::RichText);
    // The keep period is set where the other preferences are; the line leads there.
    connect(keep_, &QLabel::linkActivated, this, [this] { model_.setPage(Page::settings); });
    layout->addWidget(heading);
    layout->addWidget(keep_);
    layout->addSpacing(Theme::line);
    list_->setColumnCount(4);
    list_->setHeaderLabels({tr("Cleared"), tr("What"), tr("Size"), tr("State")});
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    list_->setColumnWidth(0, 140);
    list_->setColumnWidth(2, 100);
    list_->setColumnWidth(3, 300);
    list_->headerItem()->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setAccessibleName(tr("History entries"));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setAlternatingRowColors(true);
    layout->addWidget(list_, 1);
    empty_->setText(tr("Nothing cleared yet. What Quarle moves to the Trash shows here, and can be put back."));
    empty_->setForegroundRole(QPalette::PlaceholderText);
    empty_->setAlignment(Qt::AlignCenter);
    layout->addWidget(empty_, 1);
    auto* footer = new QHBoxLayout;
    footer->addWidget(emptyAll_);
    footer->addStretch();
    footer->addWidget(emptyNow_);
    putBack_->setDefault(true);
    footer->addWidget(putBack_);
    layout->addLayout(footer);

    connect(list_, &QTreeWidget::itemSelectionChanged, this, &HistoryPage::follow);
    connect(putBack_, &QPushButton::clicked, this, &HistoryPage::restoreChosen);
    connect(emptyNow_, &QPushButton::clicked, this, [this] {
        if (const HistoryEntry* e = entryOf(model_, list_->currentItem())) model_.emptyNow(*e, false);
    });
    connect(emptyAll_, &QPushButton::clicked, this, [this] { model_.emptyAll(false); });
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &HistoryPage::refresh);
    for (auto signal : {&Model::historyChanged, &Model::keepDaysChanged, &Model::jobsChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void HistoryPage::refresh() {
    keep_->setText(tr("Quarle keeps what it moves in the Trash %1, then empties it. <a href=\"settings\">Change this "
                      "in Settings</a>.").arg(model_.keepFor().toHtmlEscaped()));
    const QUuid current = list_->currentItem() ? list_->currentItem()->data(0, idRole).toUuid() : QUuid();
    QSet<QUuid> open;
    for (int i = 0; i < list_->topLevelItemCount(); ++i)
        if (list_->topLevelItem(i)->isExpanded()) open.insert(list_->topLevelItem(i)->data(0, idRole).toUuid());
    list_->clear();
    QList<HistoryEntry> entries = model_.history();
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.date > b.date; });
    bool inTrash = false;
    for (const HistoryEntry& e : entries) {
        auto* item = new QTreeWidgetItem(list_, {Fmt::day(e.date), e.title, Fmt::bytes(e.bytes), stateText(e, model_.keepDays())});
        item->setData(0, idRole, e.id);
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        inTrash |= e.state == HistoryEntry::State::inTrash;
        for (const HistoryEntry::Moved& m : e.moved) {
            auto* kid = new QTreeWidgetItem(item, {QString(), Fmt::path(m.original), Fmt::bytes(m.bytes)});
            kid->setData(0, idRole, m.original);
            kid->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
            kid->setForeground(1, Theme::muted());
        }
        if (open.contains(e.id)) item->setExpanded(true);
        if (e.id == current) list_->setCurrentItem(item);
    }
    // The newest entry is current at first, so that its buttons show what can be done with it.
    if (!list_->currentItem() && list_->topLevelItemCount() > 0) list_->setCurrentItem(list_->topLevelItem(0));
    list_->setVisible(!entries.isEmpty());
    empty_->setVisible(entries.isEmpty());
    emptyAll_->setEnabled(inTrash && model_.jobs() == 0);
    follow();
}

void HistoryPage::follow() {
    const HistoryEntry* e = entryOf(model_, list_->currentItem());
    const bool there = e && e->state == HistoryEntry::State::inTrash && model_.jobs() == 0;
    putBack_->setEnabled(there);
    emptyNow_->setEnabled(there);
}

void HistoryPage::restoreChosen() {
    const HistoryEntry* e = entryOf(model_, list_->currentItem());
    if (!e) return;
    // Items chosen inside the entry go back alone; the entry itself puts back all of it.
    QSet<QString> only;
    for (const QTreeWidgetItem* item : list_->selectedItems())
        if (item->parent() && entryOf(model_, item) == e) only.insert(item->data(0, idRole).toString());
    model_.restore(*e, only.isEmpty() ? std::nullopt : std::optional<QSet<QString>>(only));
}

void HistoryPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // Swatches, bars and dimmed lines carry the palette's colours: draw them again in the new one.
    if (event->type() == QEvent::PaletteChange) fold_->start();
}
