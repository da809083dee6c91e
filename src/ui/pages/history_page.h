#pragma once
// History: what Quarle moved, newest first, each entry with its items; Put Back (the whole entry or
// the items chosen), Empty Now, Empty all of Quarle's items, and the keep period.

#include <QWidget>

class Model;
class QLabel;
class QPushButton;
class QTimer;
class QTreeWidget;

class HistoryPage : public QWidget {
    Q_OBJECT
public:
    explicit HistoryPage(Model& model, QWidget* parent = nullptr);
    void refresh();
    QTreeWidget* list() const { return list_; }
    QPushButton* putBack() const { return putBack_; }
    QPushButton* emptyNow() const { return emptyNow_; }
    QPushButton* emptyAll() const { return emptyAll_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void follow();
    void restoreChosen();

    Model& model_;
    QLabel* keep_;
    QTreeWidget* list_;
    QLabel* empty_;
    QPushButton* putBack_;
    QPushButton* emptyNow_;
    QPushButton* emptyAll_;
    QTimer* fold_;
};
