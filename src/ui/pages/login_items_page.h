#pragma once
// Login items: what starts with the session or the system, with who made it and whether it still
// has a program to run. Loaded the first time the page is shown.

#include <QWidget>

class Model;
class QLabel;
class QTimer;
class QTreeWidget;

class LoginItemsPage : public QWidget {
    Q_OBJECT
public:
    explicit LoginItemsPage(Model& model, QWidget* parent = nullptr);

    QTreeWidget* list() const { return list_; }
    QLabel* state() const { return state_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();

    Model& model_;
    QLabel* state_;
    QTreeWidget* list_;
    QTimer* fold_;
};
