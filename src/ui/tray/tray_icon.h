#pragma once
// Quarle's item in the desktop's tray, shown while the preference says so and the desktop has a
// tray: the free space, Scan, Clear Now with the bytes ticked in Clean (confirmed in the window),
// Open Quarle and Quit.

#include <QObject>

class Model;
class QAction;
class QSystemTrayIcon;

class TrayIcon : public QObject {
    Q_OBJECT
public:
    explicit TrayIcon(Model& model, QObject* parent = nullptr);
    // Shows or hides the item; with it shown, closing the window leaves Quarle running.
    void apply(bool show);
    bool shown() const;

private:
    void refresh();

    Model& model_;
    QSystemTrayIcon* icon_ = nullptr;  // only where the desktop has a tray
    QAction* free_ = nullptr;
    QAction* clear_ = nullptr;
};
