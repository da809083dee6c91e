// Apps: the spinner until the first list and no empty state before it; a new order or a reload keeps
// the focused app; leftover ticks follow the model both ways; a running app's Uninstall… is refused
// in the window's toast; the order is remembered; the keys step over the gone apps' heading.

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <atomic>

#include "core/home.h"
#include "model_fixture.h"
#include "support/sandbox.h"
#include "ui/pages/apps_page.h"
#include "ui/widgets/app_detail.h"
#include "ui/widgets/app_list_model.h"
#include "ui/widgets/leftover_model.h"
#include "ui/window/main_window.h"
#include "ui/window/toast_line.h"

using namespace ModelTest;

namespace {

InstalledApp app(const QString& name, qint64 bytes, QList<Leftover> leftovers = {}) {
    return {name, "org.example." + name, Home::at("Applications/" + name + ".AppImage"), bytes, std::nullopt, "Maker",
            std::move(leftovers)};
}

QStringList order(const AppListModel& rows) {
    QStringList names;
    for (int i = 0; i < rows.rowCount(); ++i)
        if (rows.appAt(rows.index(i))) names << rows.index(i).data().toString();
    return names;
}

}  // namespace

TEST(AppsPage, LoadsOnceShownKeepsTheFocusAndFollowsTheModel) {
    Sandbox::clearHome();
    Machine machine;
    const QList<Leftover> left{{Home::at(".var/app/org.example.Owl"), 300, "Its own folder", Confidence::sure},
                               {Home::at(".config/Owl"), 200, "Named after the app", Confidence::likely},
                               {Home::at(".cache/owl-backups"), 100, "Name contains \"Owl\"", Confidence::yours}};
    auto listed = std::make_shared<AppScanner::Result>();
    listed->apps = {app("Zebra", 5'000), app("Owl", 1'000, left), app("Ant", 3'000)};
    listed->orphans = {{"Gone", "org.example.Gone", {{Home::at(".var/app/org.example.Gone"), 9, "", Confidence::likely}}}};
    auto release = std::make_shared<std::atomic<bool>>(false);
    ModelServices services = machine.services();
    services.scanApps = [listed, release](const Cancelled&) {
        while (!*release) QThread::msleep(2);
        return *listed;
    };
    Model model(services);
    MainWindow window(model);
    auto* page = qobject_cast<AppsPage*>(window.page(Page::apps));
    ASSERT_TRUE(page);
    model.setPage(Page::apps);
    window.show();

    // Loading: the spinner, never the empty state.
    ASSERT_TRUE(model.appsLoading());
    QTest::qWait(1);
    EXPECT_TRUE(page->findChild<QProgressBar*>()->isVisible());
    EXPECT_EQ(page->state()->text(), "Looking for apps…");
    *release = true;
    ASSERT_TRUE(waitFor([&] { return model.appsLoaded(); }));
    QTest::qWait(1);
    AppListModel& rows = *page->rows();
    EXPECT_EQ(order(rows), (QStringList{"Zebra", "Ant", "Owl"}));
    EXPECT_EQ(model.appFocus(), listed->apps[0].path) << "the largest takes the focus";

    // Down moves the focus; a new order and a reload keep it on the same app, and the order is kept.
    page->view()->setFocus();
    QTest::keyClick(page->view(), Qt::Key_Down);
    QTest::keyClick(page->view(), Qt::Key_Down);
    ASSERT_EQ(model.appFocus(), listed->apps[1].path);
    model.setAppSort(AppSort::name);
    QTest::qWait(1);
    EXPECT_EQ(order(rows), (QStringList{"Ant", "Owl", "Zebra"}));
    EXPECT_EQ(page->view()->currentIndex().data().toString(), "Owl");
    listed->apps.removeFirst();
    listed->apps.append(app("Bee", 10));
    model.loadApps();
    ASSERT_TRUE(waitFor([&] { return !model.appsLoading(); }));
    QTest::qWait(1);
    EXPECT_EQ(order(rows), (QStringList{"Ant", "Bee", "Owl"}));
    EXPECT_EQ(page->view()->currentIndex().data().toString(), "Owl");
    EXPECT_EQ(Model(services).appSort(), AppSort::name);

    // Ticks: the sure leftover starts ticked; Space ticks another; the model's toggle shows.
    LeftoverModel& leftovers = *page->detail()->rows();
    ASSERT_EQ(leftovers.rowCount(), 3);
    const auto ticked = [&](int row) { return leftovers.index(row).data(Qt::CheckStateRole).toInt() == Qt::Checked; };
    EXPECT_TRUE(ticked(0));
    EXPECT_FALSE(ticked(1));
    EXPECT_EQ(leftovers.index(2).data(LeftoverModel::whyRole).toString(), "Name contains \"Owl\"");
    QTest::keyClick(page->view(), Qt::Key_Right);
    QTest::keyClick(page->detail()->leftovers(), Qt::Key_Down);
    QTest::keyClick(page->detail()->leftovers(), Qt::Key_Space);
    EXPECT_TRUE(model.leftoverTicks().contains(left[1].path));
    model.toggleLeftover(left[0].path);
    QTest::qWait(1);
    EXPECT_FALSE(ticked(0));
    EXPECT_TRUE(ticked(1));

    // A running app is not uninstalled: the toast says so and nothing is asked.
    machine.running->insert("org.example.Owl");
    page->detail()->removeButton()->click();
    EXPECT_FALSE(model.confirm());
    QTest::qWait(1);
    EXPECT_EQ(window.toast()->text(), "Quit Owl first, then uninstall it.");

    // Down from the last app steps over the heading to the gone app.
    QTest::keyClick(page->view(), Qt::Key_Down);
    EXPECT_EQ(model.orphanFocus(), "Gone");

    // Finding hides the apps that do not match, and the heading when no gone app is left.
    const auto hidden = [&](const QModelIndex& index) { return page->view()->isRowHidden(index.row()); };
    page->find()->setText("ant");
    EXPECT_FALSE(hidden(rows.indexOfApp(listed->apps[1].path)));
    EXPECT_TRUE(hidden(rows.indexOfApp(listed->apps[0].path)));
    EXPECT_TRUE(hidden(rows.index(rows.indexOfOrphan("Gone").row() - 1)));
    QTest::keyClick(page->find(), Qt::Key_Escape);
    EXPECT_FALSE(hidden(rows.indexOfApp(listed->apps[0].path)));
}
