// Home in its three states: nothing scanned, a scan running with its early rows, a result with the
// disk's legend adding up and the way to Clean.

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <atomic>

#include "model_fixture.h"
#include "ui/pages/home_page.h"

using namespace ModelTest;

TEST(Home, ShowsEachScanStateAndTheDisk) {
    Machine machine;
    Scripted script;
    const QDateTime now = *machine.clock;
    script.result->volume = disk;
    script.result->strata = {{"Developer", 333'333'333'333, Paint::sky}, {"Photos", 266'666'666'667, Paint::peach}};
    script.result->findings = {row("caches", Bucket::now, {part("/h/c", 3'000'000'000, now)}),
                               row("old", Bucket::call, {part("/h/o", 1'000'000'000, now)})};
    auto release = std::make_shared<std::atomic<bool>>(false);
    *script.during = [release](const EarlyReport& early, const Cancelled&) {
        early(1, {{"caches", "Caches", Bucket::now, 3'000'000'000, true}, {"old", "Old things", Bucket::call, 5, false}});
        for (int i = 0; i < 600 && !*release; ++i) QThread::msleep(5);
    };
    script.files = 1234;
    Model model(script.services(machine));
    HomePage home(model);
    EXPECT_TRUE(home.scanLine().startsWith("Not scanned yet"));
    EXPECT_FALSE(home.cleanButton()->isEnabled());
    model.hideRow(row("old", Bucket::call, {}));

    home.scanButton()->click();
    ASSERT_TRUE(waitFor([&] { return model.scanning(); }));
    QTest::qWait(300);  // the live figures redraw four times a second
    EXPECT_TRUE(home.scanLine().startsWith("Scanning your home…"));
    EXPECT_TRUE(home.scanLine().contains("1,234 files")) << home.scanLine().toStdString();
    EXPECT_FALSE(home.scanButton()->isEnabled());
    EXPECT_EQ(home.rows(), QStringList{"Caches"}) << "early rows appear, the hidden one left out";
    *release = true;
    ASSERT_TRUE(settle(model));
    QTest::qWait(1);

    EXPECT_TRUE(home.scanLine().startsWith("Last scan: ")) << home.scanLine().toStdString();
    EXPECT_TRUE(home.scanButton()->isEnabled());
    EXPECT_EQ(home.figures(), "400 GB free of 1.0 TB");
    // Sizes of the slices and the free space add up to the disk shown.
    EXPECT_EQ(home.legend(), (QStringList{"Developer", "333.3 GB", "Photos", "266.7 GB", "Free", "400.0 GB"}));
    home.cleanButton()->click();
    EXPECT_EQ(model.page(), Page::clean);
}
