#pragma once
// Quarle's item in the desktop's tray, shown while the preference says so and the desktop has a
// tray: the free space, Scan, Clear Now with the bytes ticked in Clean (confirmed in the window),
// Open Quarle and Quit.

#include <QObject>
#include <QSystemTrayIcon>

class Model;
class QAction;
class QMenu;

class TrayIcon : public QObject {
    Q_OBJECT
public:
    // `hasTray`: whether the desktop shows tray items (a test stands in for one).
    explicit TrayIcon(Model& model, QObject* parent = nullptr, bool hasTray = QSystemTrayIcon::isSystemTrayAvailable());
    // Shows or hides the item; with it shown, closing the window leaves Quarle running.
    void apply(bool show);
    bool shown() const;
    bool hasTray() const { return icon_ != nullptr; }
    // The item's menu and its actions; built even without a tray, so that the self-check can drive them.
    QMenu* menu() const { return menu_; }
    QAction* scanAction() const { return scan_; }
    QAction* clearAction() const { return clear_; }
    QAction* openAction() const { return open_; }

private:
    void refresh();

    Model& model_;
    QSystemTrayIcon* icon_ = nullptr;  // only where the desktop has a tray
    QMenu* menu_;
    QAction* free_ = nullptr;
    QAction* scan_ = nullptr;
    QAction* clear_ = nullptr;
    QAction* open_ = nullptr;
};
