#include "ui/widgets/disk_bar.h"

#include <QPainter>
#include <QPainterPath>

#include "ui/theme/theme.h"

DiskBar::DiskBar(QWidget* parent) : QWidget(parent) {
    setMinimumHeight(22);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Disk"));
}

void DiskBar::setParts(const QList<DiskPart>& strata, qint64 total) {
    strata_ = strata;
    total_ = total;
    update();
}

void DiskBar::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath clip;
    clip.addRoundedRect(r, Theme::radius, Theme::radius);
    p.setClipPath(clip);
    p.fillRect(r, Theme::track());
    qint64 sum = 0;
    for (const DiskPart& part : strata_) sum += part.bytes;
    const double scale = r.width() / double(std::max(total_, sum) > 0 ? std::max(total_, sum) : 1);
    double x = r.left();
    for (const DiskPart& part : strata_) {
        if (part.bytes <= 0) continue;
        const double w = part.bytes * scale;
        p.fillRect(QRectF(x, r.top(), w, r.height()), Theme::paint(part.paint));
        x += w;
        // A hairline of the window colour keeps neighbouring slices apart.
        p.fillRect(QRectF(x - 1, r.top(), 1, r.height()), palette().color(QPalette::Window));
    }
}
