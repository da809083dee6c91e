#include "ui/widgets/space_map.h"

#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <cmath>

#include "core/checked.h"
#include "core/fmt.h"
#include "ui/theme/theme.h"

namespace {

constexpr double minSpan = 1.0;  // degrees: a child thinner than this goes into "smaller items"
constexpr Paint firstRing[] = {Paint::sky, Paint::lavender, Paint::mint, Paint::peach,
                               Paint::pink, Paint::butter, Paint::aqua, Paint::sand};

QColor mix(const QColor& a, const QColor& b, double t) {
    return QColor::fromRgbF(float(a.redF() + (b.redF() - a.redF()) * t), float(a.greenF() + (b.greenF() - a.greenF()) * t),
                            float(a.blueF() + (b.blueF() - a.blueF()) * t));
}

}  // namespace

SpaceMap::SpaceMap(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setMinimumSize(220, 220);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Map of the folder"));
}

void SpaceMap::setFolder(const SpaceNode& folder) {
    if (folder.path == folder_.path && folder.bytes == folder_.bytes && folder.kids.isSharedWith(folder_.kids)) return;
    folder_ = folder;
    slices_.clear();
    hover_ = -1;
    lay(folder_, 0, 0, 360, -1);
    colour();
    shape();
    setAccessibleDescription(tr("%1, %2").arg(folder_.name, Fmt::bytes(folder_.bytes)));
}

void SpaceMap::lay(const SpaceNode& node, int ring, double start, double span, int parent) {
    if (ring >= rings || node.kids.isEmpty()) return;
    qint64 sum = 0;
    for (const SpaceNode& kid : node.kids) sum = Checked::add(sum, std::max<qint64>(kid.bytes, 0));
    const qint64 total = std::max(node.bytes, sum);
    if (total <= 0) return;
    double at = start;
    qint64 shown = 0;
    for (const SpaceNode& kid : node.kids) {
        const double s = span * double(std::max<qint64>(kid.bytes, 0)) / double(total);
        if (s < minSpan) break;  // children come largest first: the rest are thinner still
        Slice slice;
        slice.name = kid.name;
        slice.path = kid.path;
        slice.bytes = kid.bytes;
        slice.ring = ring;
        slice.start = at;
        slice.span = s;
        slice.isDir = kid.isDir;
        slice.parent = parent;
        slices_.append(slice);
        shown += kid.bytes;
        if (kid.isDir) lay(kid, ring + 1, at, s, int(slices_.size()) - 1);
        at += s;
    }
    // What no child shown accounts for: the thin ones and the folder's loose bytes.
    if (total > shown) {
        Slice rest;
        rest.name = tr("smaller items");
        rest.path = node.path;
        rest.bytes = total - shown;
        rest.ring = ring;
        rest.start = at;
        rest.span = std::max(0.0, start + span - at);
        rest.isDir = true;
        rest.folded = true;
        rest.parent = parent;
        slices_.append(rest);
    }
}

void SpaceMap::colour() {
    // The first ring in the palette's paints, each child a step of its parent's colour towards
    // the background, neighbours a shade apart; files and "smaller items" quieter.
    const QColor ground = palette().color(QPalette::Window);
    int next = 0;
    for (int i = 0; i < slices_.size(); ++i) {
        Slice& s = slices_[i];
        QColor c;
        if (s.parent < 0) c = Theme::paint(firstRing[next++ % std::size(firstRing)]);
        else c = mix(slices_[s.parent].colour, ground, 0.16);
        if (!s.isDir) c = mix(c, Theme::paint(Paint::stone), 0.35);
        if (s.folded) c = mix(Theme::paint(Paint::stone), ground, 0.35 + 0.1 * s.ring);
        if (i % 2 && s.parent >= 0) c = c.lighter(106);
        s.colour = c;
    }
    stale_ = true;
}

QRectF SpaceMap::square() const {
    // Below the rings, a line for the name and size under the pointer.
    const int below = fontMetrics().height() + 10;
    const double side = std::max(0, std::min(width(), height() - below) - 8);
    return QRectF((width() - side) / 2, (height() - below - side) / 2, side, side);
}

double SpaceMap::middleRadius() const { return square().width() / 2 * 0.3; }

double SpaceMap::ringWidth() const { return (square().width() / 2 - middleRadius()) / rings; }

void SpaceMap::shape() {
    const QPointF c = square().center();
    const double middle = middleRadius(), w = ringWidth();
    for (Slice& s : slices_) {
        s.shape = QPainterPath();
        if (s.span < 0.05) continue;  // thinner than a pixel at any size: nothing to draw or point at
        const double inner = middle + s.ring * w + 1.5, outer = middle + (s.ring + 1) * w - 1.5;
        const QRectF in(c.x() - inner, c.y() - inner, 2 * inner, 2 * inner), out(c.x() - outer, c.y() - outer, 2 * outer, 2 * outer);
        // Qt counts degrees counter-clockwise from three o'clock.
        const double from = 90 - s.start;
        s.shape.arcMoveTo(out, from);
        s.shape.arcTo(out, from, -s.span);
        s.shape.arcTo(in, from - s.span, s.span);
        s.shape.closeSubpath();
    }
    stale_ = true;
    update();
}

int SpaceMap::sliceAt(const QPointF& at) const {
    const QPointF d = at - square().center();
    const double r = std::hypot(d.x(), d.y());
    if (r < middleRadius()) return -1;
    const int ring = int((r - middleRadius()) / ringWidth());
    if (ring >= rings) return -1;
    double angle = std::atan2(d.x(), -d.y()) * 180 / M_PI;
    if (angle < 0) angle += 360;
    for (int i = 0; i < slices_.size(); ++i)
        if (slices_[i].ring == ring && angle >= slices_[i].start && angle < slices_[i].start + slices_[i].span) return i;
    return -1;
}

QPointF SpaceMap::pointIn(int i) const {
    const Slice& s = slices_.at(i);
    const double r = middleRadius() + (s.ring + 0.5) * ringWidth(), a = (s.start + s.span / 2) * M_PI / 180;
    return square().center() + QPointF(r * std::sin(a), -r * std::cos(a));
}

QString SpaceMap::hoverLine() const {
    if (hover_ < 0) return folder_.path.isEmpty() ? QString() : tr("%1 — %2").arg(folder_.name, Fmt::bytes(folder_.bytes));
    // The way from the folder down to the slice.
    QStringList names;
    for (int i = hover_; i >= 0; i = slices_[i].parent) names.prepend(slices_[i].name);
    const Slice& s = slices_[hover_];
    const double share = folder_.bytes > 0 ? 100.0 * double(s.bytes) / double(folder_.bytes) : 0;
    return tr("%1 — %2 (%3%)").arg(names.join(QStringLiteral(" › ")), Fmt::bytes(s.bytes), QLocale().toString(share, 'f', share < 10 ? 1 : 0));
}

void SpaceMap::draw() {
    const qreal ratio = devicePixelRatioF();
    picture_ = QPixmap((QSizeF(size()) * ratio).toSize());
    picture_.setDevicePixelRatio(ratio);
    picture_.fill(Qt::transparent);
    QPainter p(&picture_);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    const QPointF c = square().center();
    const double middle = middleRadius();
    if (slices_.isEmpty()) {
        // An empty folder, or one not listed yet: a quiet ring.
        p.setBrush(Theme::track());
        QPainterPath ring;
        ring.addEllipse(c, middle + ringWidth(), middle + ringWidth());
        ring.addEllipse(c, middle + 1.5, middle + 1.5);
        p.drawPath(ring);
    }
    // A hairline of the background between neighbours.
    p.setPen(QPen(palette().color(QPalette::Window), 0.8));
    for (const Slice& s : slices_) {
        p.setBrush(s.colour);
        p.drawPath(s.shape);
    }
    p.setPen(Qt::NoPen);
    // The middle: the folder's name and size.
    p.setBrush(palette().color(QPalette::Base));
    p.drawEllipse(c, middle - 2, middle - 2);
    QFont name = font();
    name.setWeight(QFont::DemiBold);
    const QFontMetrics nameMetrics(name);
    const double width = 2 * middle - 16;
    p.setFont(name);
    p.setPen(palette().color(QPalette::Text));
    const QRectF top(c.x() - width / 2, c.y() - nameMetrics.height(), width, nameMetrics.height());
    p.drawText(top, Qt::AlignHCenter | Qt::AlignBottom, nameMetrics.elidedText(folder_.name, Qt::ElideMiddle, int(width)));
    p.setFont(Theme::figureFont());
    p.setPen(palette().color(QPalette::Text));
    p.drawText(QRectF(c.x() - width / 2, c.y() + 2, width, QFontMetrics(Theme::figureFont()).height()), Qt::AlignHCenter | Qt::AlignTop,
               Fmt::bytes(folder_.bytes));
    stale_ = false;
}

void SpaceMap::paintEvent(QPaintEvent*) {
    if (stale_ || picture_.size() != (QSizeF(size()) * devicePixelRatioF()).toSize()) draw();
    QPainter p(this);
    p.drawPixmap(0, 0, picture_);
    const QRectF below(0, square().bottom() + 6, width(), fontMetrics().height());
    p.setPen(palette().color(QPalette::PlaceholderText));
    p.drawText(below, Qt::AlignHCenter | Qt::AlignTop, fontMetrics().elidedText(hoverLine(), Qt::ElideMiddle, width() - 8));
    if (hover_ >= 0 && !slices_[hover_].shape.isEmpty()) {
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(palette().color(QPalette::Text), 1.5));
        p.setBrush(QColor(255, 255, 255, Theme::current() == Theme::Scheme::night ? 40 : 90));
        p.drawPath(slices_[hover_].shape);
    }
}

void SpaceMap::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    shape();
}

void SpaceMap::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        colour();
        update();
    }
}

void SpaceMap::setHover(int slice) {
    if (slice == hover_) return;
    hover_ = slice;
    update();
}

void SpaceMap::mouseMoveEvent(QMouseEvent* event) {
    setHover(sliceAt(event->position()));
    if (hover_ >= 0) QToolTip::showText(event->globalPosition().toPoint(), hoverLine(), this);
    else QToolTip::hideText();
}

void SpaceMap::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int at = sliceAt(event->position());
    if (at >= 0) {
        emit clicked(slices_[at].path, slices_[at].isDir);
        return;
    }
    const QPointF d = event->position() - square().center();
    if (std::hypot(d.x(), d.y()) < middleRadius() && !folder_.path.isEmpty()) emit middleClicked(folder_.path);
}

void SpaceMap::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    setHover(-1);
}
