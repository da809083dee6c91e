#pragma once
// The window: the sidebar, the stacked pages and the toast line over them. It follows the model's
// page and appearance, and closing it while work is in flight waits for that work and says so.

#include <QWidget>
#include <array>

#include "model/page.h"
#include "ui/window/sidebar.h"

class Model;
class QStackedWidget;
class Sidebar;
class ToastLine;

class ModalHost;

class MainWindow : public QWidget {
    Q_OBJECT
public:
    explicit MainWindow(Model& model, QWidget* parent = nullptr);
    QStackedWidget* stack() const { return stack_; }
    Sidebar* sidebar() const { return sidebar_; }
    ToastLine* toast() const { return toast_; }
    ModalHost* modals() const { return modals_; }
    // The page, made now if it was not yet.
    QWidget* page(Page page);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    Model& model_;
    Sidebar* sidebar_;
    QStackedWidget* stack_;
    ToastLine* toast_;
    ModalHost* modals_;
    std::array<bool, pageCount> made_{};
    bool closing_ = false;

    QWidget* makePage(Page page);
    void makeNextPage();
};
