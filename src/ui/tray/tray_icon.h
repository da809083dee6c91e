#pragma once
// Quarle's item in the desktop's tray, shown while the preference says so and the desktop has a
// tray: the free space as its tooltip, and a menu to open the window, scan and quit.

#include <QObject>

class Model;
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
};
