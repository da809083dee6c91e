#pragma once
// Settings: how long Quarle's items stay in the Trash, the appearance, the tray item, the rows and
// paths the user set aside (each with its way back) and the version.

#include <QWidget>

class Model;
class QCheckBox;
class QComboBox;
class QTimer;
class QVBoxLayout;

class SettingsPage : public QWidget {
    Q_OBJECT
public:
    explicit SettingsPage(Model& model, QWidget* parent = nullptr);
    void refresh();
    QComboBox* keepDays() const { return keepDays_; }
    QComboBox* appearance() const { return appearance_; }
    QCheckBox* tray() const { return tray_; }
    // The texts of the hidden rows and never-cleared paths listed, for tests and accessibility tools.
    QStringList setAside() const;

private:
    Model& model_;
    QComboBox* keepDays_;
    QComboBox* appearance_;
    QCheckBox* tray_;
    QVBoxLayout* hidden_;
    QVBoxLayout* never_;
    QTimer* fold_;
};
