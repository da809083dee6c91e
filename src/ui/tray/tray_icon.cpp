#include "ui/tray/tray_icon.h"

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QSystemTrayIcon>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/theme/theme.h"

namespace {

// A disk drawn as a ring with its used part in a paint.
QIcon drawnIcon() {
    QPixmap pixmap(64, 64);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Theme::paint(Paint::stone, Theme::Scheme::paper), 10));
    p.drawEllipse(QRectF(8, 8, 48, 48));
    p.setPen(QPen(Theme::paint(Paint::mint, Theme::Scheme::night), 10, Qt::SolidLine, Qt::FlatCap));
    p.drawArc(QRectF(8, 8, 48, 48), 90 * 16, -250 * 16);
    return QIcon(pixmap);
}

}  // namespace

TrayIcon::TrayIcon(Model& model, QObject* parent) : QObject(parent), model_(model) {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
    icon_ = new QSystemTrayIcon(drawnIcon(), this);
    auto* menu = new QMenu;
    connect(this, &QObject::destroyed, menu, [menu] { delete menu; });  // a menu of the tray has no parent
    menu->addAction(tr("Open Quarle"), this, [this] {
        if (model_.openWindow) model_.openWindow();
    });
    menu->addAction(tr("Scan"), this, [this] { model_.rescan(false); });
    menu->addSeparator();
    menu->addAction(tr("Quit Quarle"), qApp, &QApplication::quit);
    icon_->setContextMenu(menu);
    connect(icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger && model_.openWindow) model_.openWindow();
    });
    connect(&model_, &Model::volumeChanged, this, &TrayIcon::refresh);
    refresh();
}

void TrayIcon::apply(bool show) {
    const bool on = show && icon_;
    if (icon_) icon_->setVisible(on);
    QApplication::setQuitOnLastWindowClosed(!on);
}

bool TrayIcon::shown() const { return icon_ && icon_->isVisible(); }

void TrayIcon::refresh() {
    const Volume& v = model_.volume();
    icon_->setToolTip(v.total > 0 ? tr("Quarle: %1 free of %2").arg(Fmt::bytes(v.free), Fmt::bytes(v.total))
                                  : QStringLiteral("Quarle"));
}
