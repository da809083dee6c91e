#include "ui/pages/clean_page.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "core/home.h"
#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/find_field.h"
#include "ui/widgets/finding_delegate.h"
#include "ui/widgets/finding_model.h"

CleanPage::CleanPage(Model& model, bool developerOnly, QWidget* parent)
    : QWidget(parent), model_(model), developerOnly_(developerOnly), rows_(new FindingModel(model, developerOnly, this)),
      view_(new QTreeView(this)), find_(new FindField(model, view_, tr("a row"), this)), empty_(new QLabel(this)), total_(new QLabel(this)),
      suggest_(new QPushButton(tr("Select suggested"), this)), trash_(new QPushButton(tr("Move to Trash…"), this)),
      fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    auto* heading = new QLabel(developerOnly ? tr("Developer") : tr("Clean"), this);
    heading->setFont(Theme::titleFont());
    auto* sub = new QLabel(developerOnly ? tr("Build products, package caches and simulators. Projects you built lately start unticked.")
                                         : tr("What Quarle found, by what happens when it goes. Everything moves to the Trash first."),
                           this);
    sub->setForegroundRole(QPalette::PlaceholderText);
    sub->setWordWrap(true);
    find_->setFixedWidth(260);
    auto* top = new QHBoxLayout;
    top->addWidget(heading, 1);
    top->addWidget(find_, 0, Qt::AlignBottom);
    layout->addLayout(top);
    layout->addWidget(sub);
    layout->addSpacing(Theme::line);

    view_->setModel(rows_);
    view_->setItemDelegate(new FindingDelegate(view_));
    view_->setHeaderHidden(true);
    view_->setUniformRowHeights(false);
    view_->setRootIsDecorated(true);
    view_->setAnimated(false);
    view_->setIndentation(20);
    view_->setAccessibleName(developerOnly ? tr("Developer rows") : tr("Rows to clear"));
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    view_->setFrameShape(QFrame::NoFrame);
    view_->installEventFilter(this);
    view_->expandToDepth(0);
    layout->addWidget(view_, 1);
    empty_->setForegroundRole(QPalette::PlaceholderText);
    empty_->setAlignment(Qt::AlignCenter);
    layout->addWidget(empty_, 1);

    auto* footer = new QHBoxLayout;
    footer->setSpacing(Theme::line * 2);
    total_->setFont(Theme::figureFont());
    footer->addWidget(total_, 1);
    footer->addWidget(suggest_);
    trash_->setDefault(true);
    footer->addWidget(trash_);
    layout->addSpacing(Theme::line);
    layout->addLayout(footer);

    connect(suggest_, &QPushButton::clicked, this, [this] { model_.selectSuggested(developerOnly_); });
    connect(trash_, &QPushButton::clicked, this, [this] { model_.askClean(developerOnly_); });
    connect(view_, &QTreeView::customContextMenuRequested, this, &CleanPage::openMenu);
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        const Finding* f = rows_->findingAt(current);
        if (f && rows_->kind(current) == FindingModel::finding && model_.focus() != f->id) model_.setFocus(f->id);
    });
    // After a sheet closes, the keys go back to the rows.
    connect(find_, &QLineEdit::textChanged, this, &CleanPage::applyFind);
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &CleanPage::refresh);
    for (auto signal : {&Model::scanChanged, &Model::scanningChanged, &Model::earlyChanged, &Model::tickedChanged,
                        &Model::picksChanged, &Model::hiddenRowsChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void CleanPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void CleanPage::refresh() {
    // A reshaped tree keeps what the user had open, the current row and the scroll position.
    QSet<QString> open;
    for (int g = 0; g < rows_->rowCount(); ++g) {
        const QModelIndex heading = rows_->index(g, 0);
        for (int f = 0; f < rows_->rowCount(heading); ++f)
            if (const QModelIndex i = rows_->index(f, 0, heading); view_->isExpanded(i)) open.insert(i.data(FindingModel::idRole).toString());
    }
    const QString current = view_->currentIndex().data(FindingModel::idRole).toString();
    const int scroll = view_->verticalScrollBar()->value();
    if (!rows_->refresh()) {
        view_->expandToDepth(0);
        for (const QString& id : open) view_->expand(rows_->indexOf(id));
        if (const QModelIndex i = rows_->indexOf(current); i.isValid()) view_->setCurrentIndex(i);
        view_->verticalScrollBar()->setValue(scroll);
    }
    applyFind();
    const bool none = rows_->rowCount() == 0;
    view_->setVisible(!none);
    empty_->setVisible(none);
    empty_->setText(model_.scan() ? (developerOnly_ ? tr("No developer files to clear.") : tr("Nothing to clear."))
                    : model_.scanning() ? tr("Scanning your home…") : tr("Not scanned yet."));
    refreshFooter();
}

void CleanPage::applyFind() {
    const QString words = find_->text().trimmed();
    for (int g = 0; g < rows_->rowCount(); ++g) {
        const QModelIndex heading = rows_->index(g, 0);
        int shown = 0;
        for (int f = 0; f < rows_->rowCount(heading); ++f) {
            const QModelIndex row = rows_->index(f, 0, heading);
            const bool match = words.isEmpty() || row.data(Qt::DisplayRole).toString().contains(words, Qt::CaseInsensitive) ||
                               row.data(FindingModel::detailRole).toString().contains(words, Qt::CaseInsensitive);
            view_->setRowHidden(f, heading, !match);
            shown += match;
        }
        view_->setRowHidden(g, {}, shown == 0);
    }
}

void CleanPage::refreshFooter() {
    qint64 bytes = 0;
    const QList<Finding> clearing = model_.clearing(developerOnly_);
    for (const Finding& f : clearing) bytes += f.bytes;
    total_->setText(clearing.isEmpty() ? tr("Nothing ticked") : tr("%1 ticked").arg(Fmt::bytes(bytes)));
    trash_->setEnabled(!clearing.isEmpty());
    suggest_->setEnabled(model_.scan().has_value());
}

QString CleanPage::totalLine() const { return total_->text(); }

void CleanPage::openMenu(const QPoint& at) {
    const QModelIndex index = view_->indexAt(at);
    const Finding* f = rows_->findingAt(index);
    if (!f) return;
    const Finding finding = *f;
    QMenu menu(this);
    QString path;
    if (const Part* p = rows_->partAt(index)) {
        const Part part = *p;
        path = part.path;
        if (model_.picks().never.contains(part.path))
            menu.addAction(tr("Allow Clearing Again"), this, [this, part] { model_.allowClear(part.path); });
        else
            menu.addAction(tr("Never Clear This"), this, [this, part] { model_.neverClear(part); });
    } else {
        path = finding.paths.value(0);
        if (!finding.removal.isNone())
            menu.addAction(tr("Move to Trash…"), this, [this, finding] { model_.askClean(finding); });
        menu.addAction(tr("Never Show This"), this, [this, finding] { model_.hideRow(finding); });
    }
    // Storage shows the home tree only.
    if (!path.isEmpty() && (path == Home::path() || path.startsWith(Home::path() + QLatin1Char('/'))))
        menu.addAction(tr("Show in Storage"), this, [this, path] {
            model_.spaceReveal(path);
            model_.setPage(Page::space);
        });
    menu.exec(view_->viewport()->mapToGlobal(at));
}

bool CleanPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == view_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        // j and k move like Down and Up.
        if (key->key() == Qt::Key_J || key->key() == Qt::Key_K) {
            QKeyEvent arrow(QEvent::KeyPress, key->key() == Qt::Key_J ? Qt::Key_Down : Qt::Key_Up, Qt::NoModifier);
            QCoreApplication::sendEvent(view_, &arrow);
            return true;
        }
        // Return opens a row to its parts and closes it again, as Right and Left do.
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && view_->currentIndex().isValid()) {
            const QModelIndex current = view_->currentIndex();
            view_->setExpanded(current, !view_->isExpanded(current));
            return true;
        }
        if (key->key() == Qt::Key_Backspace && key->modifiers() & Qt::ControlModifier) {
            model_.askClean(developerOnly_);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
