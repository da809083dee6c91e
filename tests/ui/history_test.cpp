// History: entries newest first with their items, one chosen item put back alone, Empty Now asking
// its question before anything goes, and the buttons only for entries still in the Trash.

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "core/home.h"
#include "core/paths.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/sandbox.h"
#include "ui/pages/history_page.h"

using namespace ModelTest;

TEST(HistoryPage, PutsBackChosenItemsAndAsksBeforeEmptying) {
    Sandbox::clearHome();
    Machine machine;
    Scripted script;
    QList<Part> parts;
    for (const char* name : {"Library/Caches/a", "Library/Caches/b"}) {
        const QString path = Home::at(name);
        Files::makeDirs(Paths::parentOf(path));
        Files::write(path, 40'000);
        parts << part(path, Files::allocated(path), *machine.clock);
    }
    script.result->findings = {row("caches", Bucket::now, parts)};
    auto model = scanned(script.services(machine));
    HistoryPage page(*model);
    EXPECT_FALSE(page.emptyAll()->isEnabled());
    model->askClean(false);
    ASSERT_TRUE(waitFor([&] { return model->confirm().has_value(); }));
    model->perform(*model->confirm(), false);
    ASSERT_TRUE(settle(*model));
    QTest::qWait(1);

    QTreeWidget* list = page.list();
    ASSERT_EQ(list->topLevelItemCount(), 1);
    QTreeWidgetItem* entry = list->topLevelItem(0);
    EXPECT_EQ(entry->text(1), "Row caches");
    EXPECT_TRUE(entry->text(3).startsWith("In the Trash until ")) << entry->text(3).toStdString();
    ASSERT_EQ(entry->childCount(), 2);
    EXPECT_TRUE(page.putBack()->isEnabled() && page.emptyNow()->isEnabled() && page.emptyAll()->isEnabled());

    // Empty Now only asks; nothing leaves the Trash until the question is answered.
    page.emptyNow()->click();
    ASSERT_TRUE(model->ask());
    EXPECT_EQ(model->ask()->title, "Empty Row caches for good?");
    model->dismissAsk();

    // The item chosen inside the entry goes back alone.
    list->setCurrentItem(entry->child(1));
    const int back = entry->child(1)->text(1).endsWith("/b") ? 1 : 0;
    page.putBack()->click();
    ASSERT_TRUE(settle(*model));
    EXPECT_TRUE(Files::exists(parts[back].path));
    EXPECT_FALSE(Files::exists(parts[1 - back].path));
    EXPECT_TRUE(model->toast()->startsWith("Put back 1 item")) << model->toast()->toStdString();
}
