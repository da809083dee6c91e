// Storage: clicks, keys and the back and forward buttons go through the model and the columns
// follow it; a listing that lands after the selection moved shows nowhere; the map's slices add up
// to their folder and a click on one opens it in the columns.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "core/home.h"
#include "core/paths.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/sandbox.h"
#include "ui/pages/storage_page.h"
#include "ui/widgets/column_browser.h"
#include "ui/widgets/column_model.h"
#include "ui/widgets/details_pane.h"
#include "ui/widgets/space_map.h"

using namespace ModelTest;

namespace {

SpaceNode node(const QString& path, qint64 bytes, QList<SpaceNode> kids = {}, bool isDir = true) {
    return {Paths::lastComponent(path), path, bytes, isDir, {}, {}, std::move(kids)};
}

void click(ColumnBrowser* browser, int column, const QString& name) {
    ColumnModel* rows = browser->rows(column);
    const int row = rows->rowOf(rows->folder().path + "/" + name);
    ASSERT_GE(row, 0) << name.toStdString();
    QListView* view = browser->column(column);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(rows->index(row)).center());
    QTest::qWait(1);
}

QString selected(const Model& model) { return model.spaceSelection() ? model.spaceSelection()->name : QString(); }

}  // namespace

TEST(StoragePage, ColumnsFollowClicksKeysAndOnlyTheListingStillWanted) {
    Sandbox::clearHome();
    const QString home = Home::path();
    Files::makeDirs(home + "/Movies");
    Files::write(home + "/Movies/trailer.mov", 20'000);
    Files::makeDirs(home + "/Music");
    Files::write(home + "/Music/song.mp3", 8'000);
    Files::write(home + "/notes.txt", 4'000);
    Machine machine;
    Scripted script;
    script.result->home = node(home, 1'000'000,
                               {node(home + "/Projects", 500'000,
                                     {node(home + "/Projects/app", 300'000, {node(home + "/Projects/app/big.bin", 300'000, {}, false)}),
                                      node(home + "/Projects/lib", 200'000, {}, false)}),
                                node(home + "/Movies", 300'000), node(home + "/Music", 100'000),
                                node(home + "/notes.txt", 100'000, {}, false)});
    auto model = scanned(script.services(machine));
    model->setPage(Page::space);
    StoragePage page(*model);
    page.resize(1200, 700);
    page.show();
    ColumnBrowser* browser = page.browser();
    ASSERT_EQ(browser->columnCount(), 1);
    EXPECT_FALSE(page.backButton()->isEnabled());

    click(browser, 0, "Projects");
    EXPECT_EQ(selected(*model), "Projects");
    QTest::qWait(1);
    ASSERT_EQ(browser->columnCount(), 2);
    EXPECT_EQ(browser->rows(1)->rowCount(), 2);
    EXPECT_EQ(browser->column(0)->currentIndex().data().toString(), "Projects");

    // Right goes in, Left comes out, Alt+Left and Alt+Right walk the steps again.
    QListView* keys = browser->currentColumn();
    QTest::keyClick(keys, Qt::Key_Right);
    QTest::keyClick(keys, Qt::Key_Down);
    QTest::qWait(1);
    EXPECT_EQ(selected(*model), "lib");
    EXPECT_EQ(browser->column(1)->currentIndex().data().toString(), "lib");
    QTest::keyClick(keys, Qt::Key_Left);
    EXPECT_EQ(selected(*model), "Projects");
    QTest::keyClick(keys, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(selected(*model), "lib");
    QTest::keyClick(keys, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(selected(*model), "Projects");
    QTest::qWait(1);
    ASSERT_TRUE(page.backButton()->isEnabled());
    page.backButton()->click();
    EXPECT_EQ(selected(*model), "lib");

    // Movies is still being listed when Music is chosen: only Music's listing shows.
    model->landings().hold(Job::listing);
    click(browser, 0, "Movies");
    EXPECT_TRUE(waitFor([&] { return browser->listingShown(); }));
    click(browser, 0, "Music");
    ASSERT_TRUE(waitFor([&] { return model->landings().waiting(Job::listing) == 2; }));
    model->landings().release(Job::listing, 0);
    QTest::qWait(1);
    EXPECT_EQ(browser->column(1)->isVisible(), false) << "no column for Movies";
    EXPECT_TRUE(browser->listingShown());
    model->landings().release(Job::listing, 0);
    QTest::qWait(1);
    EXPECT_FALSE(browser->listingShown());
    ASSERT_TRUE(browser->column(1)->isVisible());
    EXPECT_EQ(browser->rows(1)->folder().name, "Music");
    EXPECT_EQ(browser->rows(1)->index(0).data().toString(), "song.mp3");

    // The mode is a preference: the map alone hides the columns.
    page.modeButton(StorageMode::map)->click();
    QTest::qWait(1);
    EXPECT_EQ(model->storageMode(), StorageMode::map);
    EXPECT_FALSE(browser->isVisible());
    EXPECT_EQ(Model(script.services(machine)).storageMode(), StorageMode::map);

    // Ctrl+Backspace asks about the selection.
    page.modeButton(StorageMode::both)->click();
    QTest::qWait(1);
    click(browser, 0, "notes.txt");
    // A file's kind and dates come from the disk through the model.
    EXPECT_TRUE(waitFor([&] { return page.details()->lines().join('\n').contains("Kind\tPlain text document"); }))
        << page.details()->lines().join('\n').toStdString();
    EXPECT_TRUE(page.details()->lines().join('\n').contains("Modified\t"));
    QTest::keyClick(browser->currentColumn(), Qt::Key_Backspace, Qt::ControlModifier);
    ASSERT_TRUE(model->confirm());
    EXPECT_EQ(model->confirm()->paths, QStringList{home + "/notes.txt"});
}

TEST(StoragePage, TheMapsSlicesAddUpToTheFolderAndAClickOpensOne) {
    Sandbox::clearHome();
    const QString home = Home::path();
    QList<SpaceNode> crumbs;  // far thinner than a degree each: folded into "smaller items"
    for (int i = 0; i < 400; ++i) crumbs.append(node(home + QStringLiteral("/crumb%1").arg(i), 100, {}, false));
    QList<SpaceNode> kids{node(home + "/Big", 600'000,
                               {node(home + "/Big/a", 400'000, {node(home + "/Big/a/x", 400'000, {}, false)}),
                                node(home + "/Big/b", 150'000, {}, false)}),  // and 50,000 of loose bytes
                          node(home + "/file", 300'000, {}, false)};
    kids.append(crumbs);
    Machine machine;
    Scripted script;
    script.result->home = node(home, 1'000'000, kids);  // 60,000 not in any child
    auto model = scanned(script.services(machine));
    StoragePage page(*model);
    page.resize(1200, 800);
    page.show();
    QTest::qWait(1);
    SpaceMap* map = page.map();
    ASSERT_EQ(map->folder().path, home);

    const QList<SpaceMap::Slice>& slices = map->slices();
    QHash<int, qint64> inside;  // bytes of the slices within each slice (-1: the folder)
    QHash<int, int> folded;
    for (const SpaceMap::Slice& s : slices) {
        inside[s.parent] += s.bytes;
        folded[s.parent] += s.folded;
        EXPECT_TRUE(s.folded || s.span >= 1.0) << s.name.toStdString();
    }
    EXPECT_EQ(inside[-1], 1'000'000);
    EXPECT_EQ(folded[-1], 1) << "one slice of smaller items per folder";
    for (int i = 0; i < slices.size(); ++i) {
        if (inside.contains(i)) {
            EXPECT_EQ(inside[i], slices[i].bytes) << slices[i].name.toStdString();
        }
    }
    const auto rest = std::find_if(slices.begin(), slices.end(), [](const SpaceMap::Slice& s) { return s.folded && s.parent < 0; });
    EXPECT_EQ(rest->bytes, 400 * 100 + 60'000);
    EXPECT_NEAR(rest->start + rest->span, 360.0, 1e-6);

    // A click on Big's child "a" opens it in the columns, and the map follows to it.
    const int a = int(std::find_if(slices.begin(), slices.end(), [](const SpaceMap::Slice& s) { return s.name == "a"; }) - slices.begin());
    const QPoint at = map->pointIn(a).toPoint();
    ASSERT_EQ(map->sliceAt(at), a);
    QTest::mouseMove(map, at);
    EXPECT_TRUE(page.hoverLine().startsWith("Big › a — ")) << page.hoverLine().toStdString();
    QTest::mouseClick(map, Qt::LeftButton, {}, at);
    QTest::qWait(1);
    ASSERT_EQ(selected(*model), "a");
    EXPECT_EQ(page.browser()->columnCount(), 3);
    EXPECT_EQ(map->folder().path, home + "/Big/a");
}

TEST(StoragePage, TheDemonstrationsTreeAndToastNeverTheDisk) {
    qputenv("QUARLE_DEMO", "1");
    Model model;
    qunsetenv("QUARLE_DEMO");
    model.start();
    ASSERT_TRUE(waitFor([&] { return model.scan().has_value(); }));
    StoragePage page(model);
    page.show();
    model.spaceReveal(model.scan()->home.path + "/Movies/Holiday.mp4");
    QTest::qWait(1);
    ASSERT_EQ(selected(model), "Holiday.mp4");
    page.trashButton()->click();
    ASSERT_TRUE(model.confirm());
    EXPECT_EQ(reportAfter(model, [&] { model.perform(*model.confirm(), false); }).toast, "Demo Mac: nothing was removed.");
}
