#include "ui/window/main_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QShortcut>
#include <QStackedWidget>

#include "model/model.h"
#include "ui/pages/apps_page.h"
#include "ui/pages/clean_page.h"
#include "ui/pages/history_page.h"
#include "ui/pages/login_items_page.h"
#include "ui/pages/home_page.h"
#include "ui/pages/placeholder_page.h"
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
    for (int i = 0; i < pageCount; ++i) {
        const Page p = Page(i);
        if (p == Page::home) stack_->addWidget(new HomePage(model_, stack_));
        else if (p == Page::clean || p == Page::developer)
            stack_->addWidget(new CleanPage(model_, p == Page::developer, stack_));
        else if (p == Page::space) stack_->addWidget(new StoragePage(model_, stack_));
        else if (p == Page::history) stack_->addWidget(new HistoryPage(model_, stack_));
        else if (p == Page::settings) stack_->addWidget(new SettingsPage(model_, stack_));
        else if (p == Page::system) stack_->addWidget(new SystemPage(model_, stack_));
        else if (p == Page::login) stack_->addWidget(new LoginItemsPage(model_, stack_));
        else if (p == Page::apps) stack_->addWidget(new AppsPage(model_, stack_));
        else stack_->addWidget(new PlaceholderPage(pageTitle(p), stack_));
    }
    toast_ = new ToastLine(model_, stack_);

    auto follow = [this] { stack_->setCurrentIndex(int(model_.page())); };
    connect(&model_, &Model::pageChanged, this, follow);
    follow();
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

QWidget* MainWindow::page(Page page) const { return stack_->widget(int(page)); }

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
