#include "ui/window/main_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QShortcut>
#include <QStackedWidget>
#include <QTimer>

#include "model/model.h"
#include "ui/pages/apps_page.h"
#include "ui/pages/clean_page.h"
#include "ui/pages/history_page.h"
#include "ui/pages/login_items_page.h"
#include "ui/pages/home_page.h"
#include "ui/pages/settings_page.h"
#include "ui/pages/storage_page.h"
#include "ui/pages/system_page.h"
#include "ui/theme/theme.h"
#include "ui/window/modal_host.h"
#include "ui/window/sidebar.h"
#include "ui/window/toast_line.h"

MainWindow::MainWindow(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), sidebar_(new Sidebar(model, this)), stack_(new QStackedWidget(this)),
      toast_(nullptr), modals_(new ModalHost(model, this)) {
    setWindowTitle(QStringLiteral("Quarle"));
    resize(Theme::windowWidth, Theme::windowHeight);
    setMinimumSize(900, 600);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(sidebar_);
    layout->addWidget(stack_, 1);
    // Pages are made when first wanted: the one shown at once, the others one per turn of the event
    // loop after the window shows, so that opening the window is not one long wait.
    for (int i = 0; i < pageCount; ++i) stack_->addWidget(new QWidget(stack_));
    toast_ = new ToastLine(model_, stack_);

    auto follow = [this] { stack_->setCurrentIndex(stack_->indexOf(page(model_.page()))); };
    connect(&model_, &Model::pageChanged, this, follow);
    follow();
    QTimer::singleShot(0, this, &MainWindow::makeNextPage);
    connect(&model_, &Model::appearanceChanged, this, [this] { Theme::apply(model_.appearance()); });

    for (int i = 0; i < pageCount; ++i) {
        auto* key = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_1 + i)), this);
        connect(key, &QShortcut::activated, this, [this, i] { model_.setPage(Page(i)); });
    }
    auto* find = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F), this);
    connect(find, &QShortcut::activated, this, [this] { model_.bumpFind(); });
    auto* rescan = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_R), this);
    connect(rescan, &QShortcut::activated, this, [this] { model_.rescan(false); });
    connect(&model_, &Model::jobsChanged, this, [this] {
        if (closing_ && model_.jobs() == 0) close();
    });
}

QWidget* MainWindow::makePage(Page p) {
    switch (p) {
    case Page::home: return new HomePage(model_, stack_);
    case Page::clean:
    case Page::developer: return new CleanPage(model_, p == Page::developer, stack_);
    case Page::space: return new StoragePage(model_, stack_);
    case Page::apps: return new AppsPage(model_, stack_);
    case Page::system: return new SystemPage(model_, stack_);
    case Page::login: return new LoginItemsPage(model_, stack_);
    case Page::history: return new HistoryPage(model_, stack_);
    case Page::settings: return new SettingsPage(model_, stack_);
    }
    return new QWidget(stack_);
}

QWidget* MainWindow::page(Page p) {
    const int at = int(p);
    if (made_[at]) return stack_->widget(at);
    made_[at] = true;
    QWidget* standIn = stack_->widget(at);
    const bool shown = stack_->currentWidget() == standIn;
    QWidget* made = makePage(p);
    stack_->insertWidget(at, made);
    stack_->removeWidget(standIn);
    standIn->deleteLater();
    if (shown) stack_->setCurrentWidget(made);
    if (toast_) toast_->raise();  // the line stays over pages made after it
    return made;
}

void MainWindow::makeNextPage() {
    for (int i = 0; i < pageCount; ++i) {
        if (made_[i]) continue;
        page(Page(i));
        QTimer::singleShot(0, this, &MainWindow::makeNextPage);
        return;
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Removals and restores finish before Quarle goes: the window stays and says why, then closes.
    if (model_.jobs() > 0) {
        closing_ = true;
        event->ignore();
        toast_->say(tr("Quarle will close when the work in progress is done."));
        return;
    }
    event->accept();
}
