// The tray: each action calls the model (Clear Now asks in the window), and closing the window
// leaves Quarle running only while the tray item is shown.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QTimer>
#include <QWidget>

#include "model_fixture.h"
#include "support/sandbox.h"
#include "ui/tray/tray_icon.h"

using namespace ModelTest;

namespace {

// Shows a window, closes it, and returns how the event loop ended: 0 when closing it quit Quarle.
int closeWindow() {
    QWidget window;
    window.show();
    QTimer::singleShot(0, &window, &QWidget::close);
    QTimer::singleShot(300, &window, [] { QApplication::exit(7); });  // gone with the window
    return QApplication::exec();
}

}  // namespace

TEST(Tray, ActionsCallTheModelAndKeepQuarleRunningWhileShown) {
    Sandbox::clearHome();
    Machine machine;
    Scripted script;
    script.result->findings = {row("caches", Bucket::now, {part("/h/c", 3'000, *machine.clock)})};
    auto model = scanned(script.services(machine));
    int opened = 0;
    model->openWindow = [&] { ++opened; };
    TrayIcon tray(*model, nullptr, true);

    ASSERT_TRUE(tray.clearAction()->isEnabled());
    EXPECT_EQ(tray.clearAction()->text(), "Clear Now (3 KB)…");
    tray.clearAction()->trigger();
    EXPECT_EQ(opened, 1);
    ASSERT_TRUE(model->confirm()) << "the confirmation, in the window just opened";
    model->dismissConfirm();
    tray.openAction()->trigger();
    EXPECT_EQ(opened, 2);
    const int scans = *script.scans;
    tray.scanAction()->trigger();
    EXPECT_TRUE(waitFor([&] { return *script.scans > scans; }));
    ASSERT_TRUE(settle(*model));

    tray.apply(true);
    EXPECT_TRUE(tray.shown());
    EXPECT_EQ(closeWindow(), 7) << "Quarle went on in the tray";
    tray.apply(false);
    EXPECT_EQ(closeWindow(), 0) << "without the item, closing the window quits";
    TrayIcon none(*model, nullptr, false);
    none.apply(true);
    EXPECT_FALSE(none.shown());
    EXPECT_EQ(closeWindow(), 0) << "a desktop without a tray cannot keep Quarle";
}
