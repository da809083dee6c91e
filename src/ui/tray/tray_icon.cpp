#include "ui/tray/tray_icon.h"

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/window/application.h"

TrayIcon::TrayIcon(Model& model, QObject* parent, bool hasTray)
    : QObject(parent), model_(model), menu_(new QMenu) {
    connect(this, &QObject::destroyed, menu_, [menu = menu_] { delete menu; });  // a menu of the tray has no parent
    free_ = menu_->addAction(QString());
    free_->setEnabled(false);
    menu_->addSeparator();
    scan_ = menu_->addAction(tr("Scan"), this, [this] { model_.rescan(false); });
    // The confirmation is shown in the window, as Clean's Move to Trash… shows it.
    clear_ = menu_->addAction(QString(), this, [this] {
        if (model_.openWindow) model_.openWindow();
        model_.askClean(false);
    });
    open_ = menu_->addAction(tr("Open Quarle"), this, [this] {
        if (model_.openWindow) model_.openWindow();
    });
    menu_->addSeparator();
    menu_->addAction(tr("Quit Quarle"), qApp, &QApplication::quit);
    for (auto changed : {&Model::volumeChanged, &Model::tickedChanged, &Model::picksChanged, &Model::scanChanged})
        connect(&model_, changed, this, &TrayIcon::refresh);
    if (hasTray) {
        icon_ = new QSystemTrayIcon(Ui::icon(), this);
        icon_->setContextMenu(menu_);
        connect(icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger && model_.openWindow) model_.openWindow();
        });
    }
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
    const QString free = v.total > 0 ? tr("%1 free of %2").arg(Fmt::bytes(v.free), Fmt::bytes(v.total)) : QString();
    if (icon_) icon_->setToolTip(free.isEmpty() ? QStringLiteral("Quarle") : QStringLiteral("Quarle: ") + free);
    free_->setText(free.isEmpty() ? tr("Not measured yet") : free);
    qint64 ticked = 0;
    for (const Finding& f : model_.clearing(false)) ticked += f.bytes;
    clear_->setText(ticked > 0 ? tr("Clear Now (%1)…").arg(Fmt::bytes(ticked)) : tr("Clear Now…"));
    clear_->setEnabled(ticked > 0);
}
