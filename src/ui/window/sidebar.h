#pragma once
// The list of the nine pages with their badges, and at its foot the disk figure, the scan state
// and a busy mark while the model has work in flight.

#include <QWidget>

#include "model/page.h"

class Model;
class QLabel;
class QListWidget;
class QProgressBar;
class QTimer;

constexpr int pageCount = 9;
QString pageTitle(Page page);
// The page's name in file names: "home", "login-items"…
QString pageSlug(Page page);

class Sidebar : public QWidget {
    Q_OBJECT
public:
    explicit Sidebar(Model& model, QWidget* parent = nullptr);
    void refresh();
    QListWidget* list() const { return list_; }
    // The badge a page shows now; empty for none.
    QString badge(Page page) const;

private:
    Model& model_;
    QListWidget* list_;
    QLabel* disk_;
    QLabel* state_;
    QProgressBar* busy_;
    QTimer* fold_;
};
