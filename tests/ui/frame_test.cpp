// The frame: the nine pages and their keys, the toast line's life, the welcome sheet closed by
// Escape, palettes switched live and a close while work is in flight.

#include <gtest/gtest.h>

#include <QApplication>
#include <QIcon>
#include <QListWidget>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>

#include "model_fixture.h"
#include "ui/theme/theme.h"
#include "ui/window/application.h"
#include "ui/window/main_window.h"
#include "ui/dialogs/welcome_sheet.h"
#include "ui/window/modal_host.h"
#include "ui/window/sidebar.h"
#include "ui/window/toast_line.h"

using namespace ModelTest;

TEST(Frame, PagesKeysToastAndPalettes) {
    Machine machine;
    Scripted script;
    const QDateTime now = *machine.clock;
    script.result->findings = {row("caches", Bucket::now, {part("/h/c", 3'000'000'000, now)}),
                               row("builds", Bucket::call, {part("/h/b", 2'000'000'000, now)}, Removal::trash(), true)};
    auto model = scanned(script.services(machine));
    MainWindow window(*model);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));

    QListWidget* list = window.sidebar()->list();
    ASSERT_EQ(list->count(), 9);
    QStringList titles;
    for (int i = 0; i < list->count(); ++i) titles << list->item(i)->text();
    EXPECT_EQ(titles.join(','), "Home,Clean,Storage,Apps,System,Developer,Login items,History,Settings");
    // The badges are what clearing would free: every ticked row on Clean, developer rows on Developer.
    EXPECT_EQ(window.sidebar()->badge(Page::clean), "3.0 GB");
    EXPECT_EQ(window.sidebar()->badge(Page::developer), "");
    model->toggle(shown(*model, "builds"));
    QTest::qWait(1);
    EXPECT_EQ(window.sidebar()->badge(Page::clean), "5.0 GB");
    EXPECT_EQ(window.sidebar()->badge(Page::developer), "2.0 GB");

    // Keys and clicks switch pages through the model; the model's page switches the stack.
    QTest::keyClick(&window, Qt::Key_8, Qt::ControlModifier);
    EXPECT_EQ(model->page(), Page::history);
    EXPECT_EQ(window.stack()->currentIndex(), int(Page::history));
    list->setCurrentRow(int(Page::clean));
    EXPECT_EQ(model->page(), Page::clean);
    model->setPage(Page::home);
    QTest::qWait(1);
    EXPECT_EQ(list->currentRow(), 0);

    // A toast shows, a second equal one starts the wait anew, and it goes by itself.
    ToastLine* toast = window.toast();
    toast->timer()->setInterval(300);
    const Finding caches = shown(*model, "caches");
    model->hideRow(caches);
    const QString text = toast->text();
    EXPECT_TRUE(text.contains("won't be shown again")) << text.toStdString();
    QTest::qWait(200);
    model->hideRow(caches);
    EXPECT_GT(toast->timer()->remainingTime(), 200);
    EXPECT_TRUE(waitFor([&] { return !model->toast(); }));
    EXPECT_EQ(toast->text(), "");

    // The welcome sheet opens while the model asks for it; Escape closes it, and it stays read.
    model->openWelcome();
    ASSERT_TRUE(window.modals()->welcomeSheet());
    QTest::keyClick(window.modals()->welcomeSheet(), Qt::Key_Escape);
    EXPECT_FALSE(model->showWelcome());

    // Palettes switch live and "follow the system" reads the desktop's palette.
    model->setAppearance(Appearance::night);
    EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 128);
    model->setAppearance(Appearance::paper);
    EXPECT_GT(QApplication::palette().color(QPalette::Window).lightness(), 128);
    model->setAppearance(Appearance::system);
    EXPECT_EQ(Theme::current(), Theme::systemScheme());
    EXPECT_NE(Theme::paint(Paint::mint, Theme::Scheme::night), Theme::paint(Paint::mint, Theme::Scheme::paper));
}

TEST(Frame, IconIsBuiltIn) {
    // Without an installed icon theme entry the window and tray still get every size of the icon.
    const QIcon icon = Ui::icon();
    ASSERT_FALSE(icon.isNull());
    for (int size : {16, 32, 48, 64, 128, 256}) EXPECT_TRUE(icon.availableSizes().contains(QSize(size, size))) << size;
}
