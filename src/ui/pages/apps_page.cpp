#include "ui/pages/apps_page.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/app_delegate.h"
#include "ui/widgets/app_detail.h"
#include "ui/widgets/app_list_model.h"
#include "ui/widgets/find_field.h"

AppsPage::AppsPage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), rows_(new AppListModel(model, this)), view_(new QListView(this)),
      detail_(new AppDetail(model, this)), sort_(new QComboBox(this)), find_(new FindField(model, view_, tr("an app"), this)), content_(new QWidget(this)),
      waiting_(new QWidget(this)), spinner_(new QProgressBar(waiting_)), state_(new QLabel(waiting_)),
      fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    auto* heading = new QLabel(tr("Apps"), this);
    heading->setFont(Theme::titleFont());
    auto* top = new QHBoxLayout;
    top->addWidget(heading, 1);
    find_->setFixedWidth(220);
    top->addWidget(find_, 0, Qt::AlignVCenter);
    top->addSpacing(Theme::gap);
    sortLabel_ = new QLabel(tr("Sort by"), this);
    QLabel* sortLabel = sortLabel_;
    sortLabel->setForegroundRole(QPalette::PlaceholderText);
    top->addWidget(sortLabel, 0, Qt::AlignVCenter);
    sort_->addItem(tr("Size"), int(AppSort::size));
    sort_->addItem(tr("Name"), int(AppSort::name));
    sort_->addItem(tr("Last use"), int(AppSort::lastUsed));
    sort_->setAccessibleName(tr("Sort apps by"));
    sortLabel->setBuddy(sort_);
    top->addWidget(sort_, 0, Qt::AlignVCenter);
    layout->addLayout(top);
    auto* sub = new QLabel(tr("Apps you can remove yourself, with what they left in your home. Everything moves to the "
                              "Trash first."),
                           this);
    sub->setForegroundRole(QPalette::PlaceholderText);
    sub->setWordWrap(true);
    layout->addWidget(sub);
    layout->addSpacing(Theme::line);

    auto* split = new QHBoxLayout(content_);
    split->setContentsMargins(0, 0, 0, 0);
    split->setSpacing(0);
    view_->setModel(rows_);
    view_->setItemDelegate(new AppDelegate(view_));
    view_->setFrameShape(QFrame::NoFrame);
    view_->setAccessibleName(tr("Apps"));
    view_->installEventFilter(this);
    detail_->leftovers()->installEventFilter(this);
    split->addWidget(view_, 5);
    split->addWidget(detail_, 6);
    layout->addWidget(content_, 1);

    auto* wait = new QVBoxLayout(waiting_);
    wait->addStretch(1);
    spinner_->setRange(0, 0);  // a busy bar: the scan does not know how far it is
    spinner_->setTextVisible(false);
    spinner_->setFixedSize(180, 6);
    spinner_->setAccessibleName(tr("Looking for apps"));
    wait->addWidget(spinner_, 0, Qt::AlignHCenter);
    state_->setForegroundRole(QPalette::PlaceholderText);
    state_->setAlignment(Qt::AlignCenter);
    state_->setWordWrap(true);
    // A readable width, centred by stretches: an aligned word-wrapped label would be given the height
    // of a narrower one and cut.
    state_->setFixedWidth(520);
    auto* centred = new QHBoxLayout;
    centred->addStretch(1);
    centred->addWidget(state_);
    centred->addStretch(1);
    wait->addLayout(centred);
    wait->addStretch(2);
    layout->addWidget(waiting_, 1);

    connect(sort_, &QComboBox::activated, this, [this](int i) { model_.setAppSort(AppSort(sort_->itemData(i).toInt())); });
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (const InstalledApp* a = rows_->appAt(current); a && model_.appFocus() != a->id()) model_.focusApp(*a);
        if (const Orphan* o = rows_->orphanAt(current); o && model_.orphanFocus() != o->id()) model_.focusOrphan(*o);
    });
    connect(find_, &QLineEdit::textChanged, this, &AppsPage::applyFind);
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &AppsPage::refresh);
    for (auto changed : {&Model::appsChanged, &Model::orphansChanged, &Model::appsLoadingChanged, &Model::appsLoadedChanged,
                         &Model::appFocusChanged, &Model::orphanFocusChanged, &Model::leftoverTicksChanged, &Model::appSortChanged})
        connect(&model_, changed, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void AppsPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!model_.appsLoaded()) model_.loadApps();
}

void AppsPage::refresh() {
    rows_->refresh();
    const bool none = rows_->rowCount() == 0;
    content_->setVisible(!none);
    waiting_->setVisible(none);
    spinner_->setVisible(model_.appsLoading());
    find_->setVisible(!none);
    sort_->setVisible(!model_.apps().isEmpty());
    sortLabel_->setVisible(!model_.apps().isEmpty());
    state_->setText(model_.appsLoading() ? tr("Looking for apps…")
                    : model_.appsLoaded()
                        ? tr("No apps to remove here. Quarle lists the Flatpak apps and AppImages you can remove "
                             "yourself; apps of the system's package manager are removed with its own tools.")
                        : QString());
    // "Last use" is offered only where the platform tells when an app was used.
    bool dated = false;
    for (const InstalledApp& a : model_.apps()) dated = dated || a.lastUsed.has_value();
    if (auto* list = qobject_cast<QListView*>(sort_->view())) list->setRowHidden(int(AppSort::lastUsed), !dated);
    sort_->setCurrentIndex(sort_->findData(int(model_.appSort())));
    // With nothing focused yet, the largest app is.
    if (!model_.appFocus() && !model_.orphanFocus())
        if (const InstalledApp* first = rows_->appAt(rows_->index(0))) model_.focusApp(*first);
    followFocus();
    applyFind();
    detail_->refresh();
}

void AppsPage::applyFind() {
    const QString words = find_->text().trimmed();
    int heading = -1, gone = 0;
    for (int i = 0; i < rows_->rowCount(); ++i) {
        const QModelIndex row = rows_->index(i);
        if (row.data(AppListModel::kindRole).toInt() == AppListModel::heading) {
            heading = i;
            continue;
        }
        const bool match = words.isEmpty() || row.data().toString().contains(words, Qt::CaseInsensitive) ||
                           row.data(AppListModel::detailRole).toString().contains(words, Qt::CaseInsensitive);
        view_->setRowHidden(i, !match);
        gone += match && rows_->orphanAt(row);
    }
    if (heading >= 0) view_->setRowHidden(heading, gone == 0);
}

void AppsPage::followFocus() {
    const QModelIndex focus = model_.appFocus() ? rows_->indexOfApp(*model_.appFocus())
                              : model_.orphanFocus() ? rows_->indexOfOrphan(*model_.orphanFocus())
                                                     : QModelIndex();
    if (focus.isValid() && view_->currentIndex() != focus) view_->setCurrentIndex(focus);
    const QString key = focus.data(AppListModel::idRole).toString();
    const int order = int(model_.appSort());
    // A reload keeps the user's scroll; a new focus or a new order shows the focused row.
    if (focus.isValid() && (key != focusShown_ || order != orderShown_)) view_->scrollTo(focus);
    focusShown_ = key;
    orderShown_ = order;
}

bool AppsPage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    QListView* leftovers = detail_->leftovers();
    if (key->key() == Qt::Key_Backspace && key->modifiers() & Qt::ControlModifier) {
        detail_->removeButton()->click();
        return true;
    }
    // Right goes over to the leftovers, where Space ticks; Left comes back to the apps.
    if (watched == view_ && (key->key() == Qt::Key_Right || key->key() == Qt::Key_Return) && leftovers->isVisible() &&
        leftovers->model()->rowCount() > 0) {
        leftovers->setFocus();
        if (!leftovers->currentIndex().isValid()) leftovers->setCurrentIndex(leftovers->model()->index(0, 0));
        return true;
    }
    if (watched == leftovers && (key->key() == Qt::Key_Left || key->key() == Qt::Key_Escape)) {
        view_->setFocus();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
