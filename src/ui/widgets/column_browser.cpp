#include "ui/widgets/column_browser.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <limits>

#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/column_delegate.h"
#include "ui/widgets/column_model.h"

namespace {
constexpr int columnWidth = 250;
}

// A turning arc while a folder is listed.
class Spinner : public QWidget {
public:
    explicit Spinner(QWidget* parent) : QWidget(parent), timer_(new QTimer(this)) {
        setFixedSize(22, 22);
        timer_->setInterval(60);
        connect(timer_, &QTimer::timeout, this, [this] {
            angle_ = (angle_ + 30) % 360;
            update();
        });
    }
    void setTurning(bool on) { on ? timer_->start() : timer_->stop(); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(Theme::track(), 2.5));
        const QRectF r = QRectF(rect()).adjusted(3, 3, -3, -3);
        p.drawEllipse(r);
        p.setPen(QPen(Theme::accent(), 2.5, Qt::SolidLine, Qt::RoundCap));
        p.drawArc(r, -angle_ * 16, 100 * 16);
    }

private:
    QTimer* timer_;
    int angle_ = 0;
};

ColumnBrowser::ColumnBrowser(Model& model, QWidget* parent)
    : QScrollArea(parent), model_(model), strip_(new QWidget), layout_(new QHBoxLayout(strip_)), listing_(new QWidget(strip_)),
      spinner_(new Spinner(listing_)) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Folders in columns"));
    // The gaps between the columns show the strip's colour: a hairline between lists.
    strip_->setBackgroundRole(QPalette::Mid);
    strip_->setAutoFillBackground(true);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(1);

    listing_->setFixedWidth(columnWidth);
    listing_->setBackgroundRole(QPalette::Base);
    listing_->setAutoFillBackground(true);
    auto* waiting = new QHBoxLayout(listing_);
    auto* label = new QLabel(tr("Listing…"), listing_);
    label->setForegroundRole(QPalette::PlaceholderText);
    waiting->addStretch();
    waiting->addWidget(spinner_);
    waiting->addWidget(label);
    waiting->addStretch();
    waiting->setAlignment(Qt::AlignTop);
    waiting->setContentsMargins(0, 40, 0, 0);
    layout_->addWidget(listing_);
    listing_->hide();
    // The space after the last column is the lists' colour, not a hairline's.
    auto* filler = new QWidget(strip_);
    filler->setBackgroundRole(QPalette::Base);
    filler->setAutoFillBackground(true);
    layout_->addWidget(filler, 1);
    setWidget(strip_);
    refresh();
}

ColumnModel* ColumnBrowser::rows(int i) const {
    QListView* view = column(i);
    return view ? static_cast<ColumnModel*>(view->model()) : nullptr;
}

// A column that says so when its folder holds nothing.
class ColumnView : public QListView {
public:
    using QListView::QListView;

protected:
    void paintEvent(QPaintEvent* event) override {
        QListView::paintEvent(event);
        if (model() && model()->rowCount() > 0) return;
        QPainter p(viewport());
        p.setPen(palette().color(QPalette::PlaceholderText));
        p.drawText(viewport()->rect().adjusted(0, Theme::gap, 0, 0), Qt::AlignHCenter | Qt::AlignTop, tr("Empty folder"));
    }
};

QListView* ColumnBrowser::addColumn() {
    auto* view = new ColumnView(strip_);
    auto* rows = new ColumnModel(view);
    view->setModel(rows);
    view->setItemDelegate(new ColumnDelegate(view));
    // A folder of 100,000 entries lays out without measuring each row, a few thousand rows per turn
    // of the event loop.
    view->setUniformItemSizes(true);
    view->setLayoutMode(QListView::Batched);
    view->setBatchSize(2000);
    view->setFixedWidth(columnWidth);
    view->setFrameShape(QFrame::NoFrame);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setTextElideMode(Qt::ElideMiddle);
    view->installEventFilter(this);
    const int c = int(views_.size());
    view->setAccessibleName(tr("Column %1").arg(c + 1));
    connect(view, &QListView::clicked, this, [this, c](const QModelIndex& index) { clicked(c, index); });
    layout_->insertWidget(c, view);
    views_.append(view);
    return view;
}

void ColumnBrowser::clicked(int column, const QModelIndex& index) {
    const SpaceNode* node = rows(column) ? rows(column)->nodeAt(index.row()) : nullptr;
    if (!node) return;
    const auto& selection = model_.spaceSelection();
    if (selection && selection->path == node->path && model_.selectionColumn() == column) return;
    model_.open(*node, column, true);
}

void ColumnBrowser::refresh() {
    const QList<SpaceNode>& columns = model_.columns();
    const auto& selection = model_.spaceSelection();
    const int selected = model_.selectionColumn();
    const QMap<QString, qint64>& clearable = model_.clearableIn();
    while (views_.size() < columns.size()) addColumn();
    const bool grew = columns.size() != shownColumns_;
    for (int c = 0; c < views_.size(); ++c) {
        QListView* view = views_[c];
        const bool shown = c < columns.size();
        view->setVisible(shown);
        if (!shown) {
            if (rows(c)->rowCount()) rows(c)->setFolder(SpaceNode{}, {});
            continue;
        }
        rows(c)->setFolder(columns[c], clearable);
        // The row on the way to the selection: the next column's folder, or the selection itself.
        const QString chosen = c + 1 < columns.size() ? columns[c + 1].path : selection && selected == c ? selection->path : QString();
        const int row = chosen.isEmpty() ? -1 : rows(c)->rowOf(chosen);
        const QModelIndex index = rows(c)->index(row);
        view->setProperty("current", c == selected || (selected < 0 && c + 1 == columns.size()));
        if (view->currentIndex() != index || view->selectionModel()->selectedIndexes().value(0) != index) {
            if (index.isValid()) {
                view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
                view->scrollTo(index);
            } else {
                view->selectionModel()->clear();
            }
        }
        view->viewport()->update();
    }
    const bool listing = model_.columnLoading() && selection && selection->isDir && selected + 1 == columns.size();
    listing_->setVisible(listing);
    spinner_->setTurning(listing);
    // Keys follow the selection to its column.
    if (QListView* current = currentColumn(); current && views_.contains(qobject_cast<QListView*>(QApplication::focusWidget())))
        current->setFocus();
    if (grew || listing) {
        shownColumns_ = int(columns.size());
        QTimer::singleShot(0, this, &ColumnBrowser::showNewest);
    }
}

void ColumnBrowser::showNewest() {
    // The newest columns in view, whole: the first one shown starts at the left edge, never cut.
    const int step = columnWidth + layout_->spacing();
    const int shown = int(model_.columns().size()) + (listingShown() ? 1 : 0);
    const int fit = std::max(1, viewport()->width() / step);
    const int left = std::max(0, shown - fit) * step;
    strip_->setMinimumWidth(left + viewport()->width());
    horizontalScrollBar()->setValue(left);
}

void ColumnBrowser::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    showNewest();
}

QListView* ColumnBrowser::currentColumn() const {
    const int c = model_.selectionColumn();
    if (c >= 0) return column(c);
    return model_.columns().isEmpty() ? nullptr : column(int(model_.columns().size()) - 1);
}

bool ColumnBrowser::listingShown() const { return !listing_->isHidden(); }

bool ColumnBrowser::eventFilter(QObject* watched, QEvent* event) {
    auto* view = qobject_cast<QListView*>(watched);
    if (event->type() != QEvent::KeyPress || !view || !views_.contains(view)) return QScrollArea::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    const bool alt = key->modifiers() & Qt::AltModifier;
    const bool none = !model_.spaceSelection();
    switch (key->key()) {
    case Qt::Key_Left:
        alt ? model_.spaceGoBack() : model_.spaceOut();
        return true;
    case Qt::Key_Right:
        if (alt) model_.spaceGoForward();
        else if (none) model_.spaceStep(1);
        else model_.spaceIn();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        none ? model_.spaceStep(1) : model_.spaceIn();
        return true;
    case Qt::Key_Up:
    case Qt::Key_K: model_.spaceStep(none ? 1 : -1); return true;
    case Qt::Key_Down:
    case Qt::Key_J: model_.spaceStep(1); return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        // A page of rows, as the list shows them.
        const int rows = std::max(1, view->viewport()->height() / std::max(1, view->sizeHintForRow(0)) - 1);
        model_.spaceStep(key->key() == Qt::Key_PageUp ? -rows : rows);
        return true;
    }
    case Qt::Key_Home: model_.spaceStep(std::numeric_limits<int>::min() / 2); return true;
    case Qt::Key_End: model_.spaceStep(std::numeric_limits<int>::max() / 2); return true;
    case Qt::Key_Backspace:
        if (key->modifiers() & Qt::ControlModifier) {
            if (!none) model_.askTrash(*model_.spaceSelection());
            return true;
        }
        break;
    default: break;
    }
    return QScrollArea::eventFilter(watched, event);
}
