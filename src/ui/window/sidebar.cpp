#include "ui/window/sidebar.h"

#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QProgressBar>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/theme/theme.h"

namespace {

constexpr int badgeRole = Qt::UserRole + 1;

// A row of the list: the page's name, its badge in small muted figures at the right.
class PageDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(0, 34));
    }
    void paint(QPainter* p, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const bool selected = option.state & QStyle::State_Selected;
        const QRect r = option.rect.adjusted(8, 2, -8, -2);
        p->save();
        p->setRenderHint(QPainter::Antialiasing);
        if (selected) {
            p->setPen(Qt::NoPen);
            p->setBrush(option.palette.color(QPalette::Highlight));
            p->drawRoundedRect(r, Theme::radius, Theme::radius);
        }
        const QColor text = option.palette.color(selected ? QPalette::HighlightedText : QPalette::WindowText);
        p->setPen(text);
        p->setFont(option.font);
        p->drawText(r.adjusted(12, 0, -70, 0), Qt::AlignVCenter | Qt::AlignLeft, index.data().toString());
        const QString badge = index.data(badgeRole).toString();
        if (!badge.isEmpty()) {
            p->setFont(Theme::smallFont());
            p->setPen(selected ? text : Theme::muted());
            p->drawText(r.adjusted(0, 0, -10, 0), Qt::AlignVCenter | Qt::AlignRight, badge);
        }
        p->restore();
    }
};

qint64 sum(const QList<Finding>& findings) {
    qint64 n = 0;
    for (const Finding& f : findings) n += f.bytes;
    return n;
}

}  // namespace

QString pageTitle(Page page) {
    static const char* titles[] = {"Home", "Clean", "Storage", "Apps", "System", "Developer", "Login items",
                                   "History", "Settings"};
    return QString::fromLatin1(titles[int(page)]);
}

QString pageSlug(Page page) { return pageTitle(page).toLower().replace(QLatin1Char(' '), QLatin1Char('-')); }

Sidebar::Sidebar(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), list_(new QListWidget(this)), disk_(new QLabel(this)),
      state_(new QLabel(this)), busy_(new QProgressBar(this)), fold_(new QTimer(this)) {
    setFixedWidth(Theme::sidebarWidth);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, Theme::gap, 0, Theme::gap);
    layout->setSpacing(Theme::line);

    list_->setAccessibleName(tr("Pages"));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setItemDelegate(new PageDelegate(list_));
    list_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->viewport()->setAutoFillBackground(false);
    for (int i = 0; i < pageCount; ++i) list_->addItem(pageTitle(Page(i)));
    layout->addWidget(list_, 1);

    for (QLabel* label : {disk_, state_}) {
        label->setFont(Theme::smallFont());
        label->setContentsMargins(Theme::gap, 0, Theme::gap, 0);
        label->setWordWrap(true);
    }
    state_->setForegroundRole(QPalette::PlaceholderText);
    busy_->setRange(0, 0);
    busy_->setTextVisible(false);
    busy_->setFixedHeight(4);
    busy_->setAccessibleName(tr("Working"));
    auto* busyRow = new QHBoxLayout;
    busyRow->setContentsMargins(Theme::gap, 0, Theme::gap, 0);
    busyRow->addWidget(busy_);
    layout->addWidget(disk_);
    layout->addWidget(state_);
    layout->addLayout(busyRow);

    connect(list_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && Page(row) != model_.page()) model_.setPage(Page(row));
    });
    // Many fields change in one burst after a scan or a removal: one refresh per turn of the loop.
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &Sidebar::refresh);
    for (auto signal : {&Model::pageChanged, &Model::scanChanged, &Model::scanningChanged, &Model::tickedChanged,
                        &Model::picksChanged, &Model::historyChanged, &Model::jobsChanged, &Model::volumeChanged,
                        &Model::appsChanged, &Model::loginItemsChanged, &Model::hiddenRowsChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

QString Sidebar::badge(Page page) const {
    switch (page) {
    case Page::clean: {
        const qint64 n = sum(model_.clearing(false));
        return n > 0 ? Fmt::bytes(n) : QString();
    }
    case Page::developer: {
        const qint64 n = sum(model_.clearing(true));
        return n > 0 ? Fmt::bytes(n) : QString();
    }
    case Page::apps:
        return model_.apps().isEmpty() ? QString() : QString::number(model_.apps().size());
    case Page::login:
        return model_.loginItems().isEmpty() ? QString() : QString::number(model_.loginItems().size());
    case Page::history: {
        int n = 0;
        for (const HistoryEntry& e : model_.history()) n += e.state == HistoryEntry::State::inTrash;
        return n > 0 ? QString::number(n) : QString();
    }
    default:
        return {};
    }
}

void Sidebar::refresh() {
    for (int i = 0; i < pageCount; ++i) list_->item(i)->setData(badgeRole, badge(Page(i)));
    if (list_->currentRow() != int(model_.page())) list_->setCurrentRow(int(model_.page()));
    const Volume& v = model_.volume();
    disk_->setText(v.total > 0 ? tr("%1 free of %2").arg(Fmt::bytes(v.free), Fmt::bytes(v.total)) : QString());
    if (model_.scanning())
        state_->setText(tr("Scanning…"));
    else if (model_.scan())
        state_->setText(tr("Last scan: %1").arg(Fmt::day(model_.scan()->date)));
    else
        state_->setText(tr("Not scanned yet"));
    busy_->setVisible(model_.jobs() > 0);
}
