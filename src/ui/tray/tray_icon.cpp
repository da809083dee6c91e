#include "ui/tray/tray_icon.h"

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/window/application.h"

TrayIcon::TrayIcon(Model& model, QObject* parent) : QObject(parent), model_(model) {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
    icon_ = new QSystemTrayIcon(Ui::icon(), this);
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
