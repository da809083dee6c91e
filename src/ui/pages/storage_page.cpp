#include "ui/pages/storage_page.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "core/paths.h"
#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/column_browser.h"
#include "ui/widgets/details_pane.h"
#include "ui/widgets/file_manager.h"
#include "ui/widgets/space_map.h"

namespace {

constexpr int sideWidth = 420;
constexpr int detailsWidth = 320;

QToolButton* arrow(QWidget* parent, Qt::ArrowType type, const QString& name) {
    auto* b = new QToolButton(parent);
    b->setArrowType(type);
    b->setAccessibleName(name);
    b->setToolTip(name);
    b->setAutoRaise(true);
    b->setFixedSize(30, 30);
    return b;
}

}  // namespace

StoragePage::StoragePage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), where_(new QLabel(this)), back_(arrow(this, Qt::LeftArrow, tr("Back (Alt+Left)"))),
      forward_(arrow(this, Qt::RightArrow, tr("Forward (Alt+Right)"))), trash_(new QPushButton(tr("Move to Trash…"), this)),
      body_(new QWidget(this)), empty_(new QLabel(this)), browser_(new ColumnBrowser(model, body_)), side_(new QWidget(body_)),
      map_(new SpaceMap(side_)), details_(new DetailsPane(side_)), fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    auto* heading = new QLabel(tr("Storage"), this);
    heading->setFont(Theme::titleFont());
    auto* top = new QHBoxLayout;
    top->setSpacing(Theme::line);
    top->addWidget(heading);
    top->addSpacing(Theme::gap);
    top->addWidget(back_, 0, Qt::AlignVCenter);
    top->addWidget(forward_, 0, Qt::AlignVCenter);
    top->addStretch(1);
    // Columns, Map, Both: one control of three joined buttons.
    auto* group = new QButtonGroup(this);
    auto* segments = new QHBoxLayout;
    segments->setSpacing(0);
    for (const auto& [mode, text] : {std::pair{StorageMode::columns, tr("Columns")}, {StorageMode::map, tr("Map")}, {StorageMode::both, tr("Both")}}) {
        auto* b = new QToolButton(this);
        b->setText(text);
        b->setCheckable(true);
        b->setAccessibleName(tr("Show %1").arg(text));
        b->setMinimumWidth(72);
        b->setFixedHeight(30);
        b->setProperty("segment", mode == StorageMode::columns ? "first" : mode == StorageMode::both ? "last" : "middle");
        group->addButton(b, int(mode));
        segments->addWidget(b);
        modes_.append(b);
    }
    top->addLayout(segments);
    top->addSpacing(Theme::gap);
    top->addWidget(trash_);
    layout->addLayout(top);
    where_->setForegroundRole(QPalette::PlaceholderText);
    where_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(where_);
    layout->addSpacing(Theme::line);

    auto* row = new QHBoxLayout(body_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Theme::gap);
    row->addWidget(browser_, 1);
    side_->setLayout(new QBoxLayout(QBoxLayout::TopToBottom));
    side_->layout()->setContentsMargins(0, 0, 0, 0);
    side_->layout()->setSpacing(Theme::gap);
    side_->layout()->addWidget(map_);
    side_->layout()->addWidget(details_);
    side_->layout()->setAlignment(details_, Qt::AlignTop);
    row->addWidget(side_);
    layout->addWidget(body_, 1);
    empty_->setForegroundRole(QPalette::PlaceholderText);
    empty_->setAlignment(Qt::AlignCenter);
    layout->addWidget(empty_, 1);

    connect(back_, &QToolButton::clicked, this, [this] { model_.spaceGoBack(); });
    connect(forward_, &QToolButton::clicked, this, [this] { model_.spaceGoForward(); });
    connect(trash_, &QPushButton::clicked, this, [this] {
        if (model_.spaceSelection()) model_.askTrash(*model_.spaceSelection());
    });
    connect(group, &QButtonGroup::idClicked, this, [this](int id) { model_.setStorageMode(StorageMode(id)); });
    connect(map_, &SpaceMap::clicked, this, [this](const QString& path) {
        if (path != map_->folder().path) model_.spaceReveal(path);  // "smaller items" of the folder shown: already open
    });
    connect(map_, &SpaceMap::middleClicked, this, [this] { model_.spaceOut(); });
    connect(details_, &DetailsPane::reveal, this, [](const QString& path) { FileManager::show(path); });
    // Move to Trash… from anywhere on the page, the map and the buttons too.
    auto* trashKey = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Backspace), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(trashKey, &QShortcut::activated, trash_, &QPushButton::click);
    connect(&model_, &Model::keysTokenChanged, this, [this] {
        if (isVisible() && browser_->currentColumn()) browser_->currentColumn()->setFocus();
    });
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &StoragePage::refresh);
    for (auto signal : {&Model::columnsChanged, &Model::spaceSelectionChanged, &Model::columnLoadingChanged,
                        &Model::clearableInChanged, &Model::spaceBackChanged, &Model::spaceForwardChanged,
                        &Model::spaceDetailsChanged, &Model::storageModeChanged, &Model::scanningChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

QAbstractButton* StoragePage::modeButton(StorageMode mode) const { return modes_.value(int(mode)); }

QString StoragePage::hoverLine() const { return map_->hoverLine(); }

void StoragePage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
    if (QWidget* keys = browser_->currentColumn()) keys->setFocus();
}

const SpaceNode* StoragePage::mapFolder() const {
    const QList<SpaceNode>& columns = model_.columns();
    const auto& selection = model_.spaceSelection();
    if (columns.isEmpty()) return nullptr;
    if (!selection) return &columns.last();
    if (selection->isDir) return columns.last().path == selection->path ? &columns.last() : &*selection;
    const int c = model_.selectionColumn();
    return c >= 0 ? &columns[c] : &columns.last();
}

void StoragePage::applyMode() {
    const StorageMode mode = model_.storageMode();
    modes_[int(mode)]->setChecked(true);
    browser_->setVisible(mode != StorageMode::map);
    map_->setVisible(mode != StorageMode::columns);
    // Beside the columns the map sits over the details at a fixed width; alone it takes the page,
    // with the details beside it.
    auto* side = static_cast<QBoxLayout*>(side_->layout());
    side->setDirection(mode == StorageMode::map ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    side->setStretchFactor(map_, 1);
    if (mode == StorageMode::map) {
        side_->setMinimumWidth(0);
        side_->setMaximumWidth(QWIDGETSIZE_MAX);
        details_->setFixedWidth(detailsWidth);
    } else {
        side_->setFixedWidth(mode == StorageMode::both ? sideWidth : detailsWidth);
        details_->setMinimumWidth(0);
        details_->setMaximumWidth(QWIDGETSIZE_MAX);
    }
}

void StoragePage::refresh() {
    const bool none = model_.columns().isEmpty();
    body_->setVisible(!none);
    empty_->setVisible(none);
    empty_->setText(model_.scanning() ? tr("Scanning your home…") : tr("Not scanned yet."));
    const auto& selection = model_.spaceSelection();
    back_->setEnabled(!model_.spaceBack().isEmpty());
    forward_->setEnabled(!model_.spaceForward().isEmpty());
    trash_->setEnabled(selection.has_value());
    where_->setText(selection ? Fmt::path(selection->path) : none ? QString() : Fmt::path(model_.columns().first().path));
    applyMode();
    if (none) return;
    browser_->refresh();
    if (const SpaceNode* folder = mapFolder(); folder && map_->isVisibleTo(this)) map_->setFolder(*folder);
    refreshDetails();
}

void StoragePage::refreshDetails() {
    const auto& selection = model_.spaceSelection();
    const SpaceNode* node = selection ? &*selection : &model_.columns().first();
    int items = int(node->kids.size());
    for (const SpaceNode& column : model_.columns())
        if (column.path == node->path) items = int(column.kids.size());
    const auto& details = model_.spaceDetails();
    details_->describe(node, details, model_.clearableIn().value(node->path, 0), items);
    if (selection && isVisible() && asked_ != node->path && !(details && details->path == node->path)) {
        asked_ = node->path;
        model_.readDetails(*node);
    }
}
