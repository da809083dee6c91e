// The removal verbs as a person or a script uses them: sentences, and the exit status.

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <thread>

#include "removal/history_store.h"

#include "core/paths.h"
#include "support/files.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

namespace {

QByteArray b(const QString& s) { return Paths::toBytes(s); }

TEST(RemovalVerbs, TrashHistoryRestoreEmptyAndExpire) {
    Sandbox::clearHome();
    const QString home = Sandbox::home();
    Files::makeDirs(home + "/Library/Caches/app");
    Files::writeText(home + "/Library/Caches/app/a", "a");
    Files::writeText(home + "/Library/Caches/app/b", "b");

    EXPECT_EQ(runQuarle({"trash"}).status, 2);
    EXPECT_EQ(runQuarle({"trash", "--bogus", "x"}).status, 2);
    EXPECT_EQ(runQuarle({"history"}).out, "History is empty: Quarle hasn't removed anything yet.\n");

    const Ran trashed = runQuarle({"trash", "--title", "App caches", b(home + "/Library/Caches"),
                                   b(home + "/Library/Caches/app/a"), b(home + "/Library/Caches/app/b")});
    EXPECT_EQ(trashed.status, 1) << "one path was refused";
    EXPECT_EQ(trashed.err, "quarle: Protected: ~/Library/Caches\n");
    EXPECT_TRUE(trashed.out.startsWith("Moved 2 items (8 KB) to the Trash. History can restore it for 7 days. "
                                       "Left 1 alone.\nHistory entry: "))
        << trashed.out.constData();
    const QByteArray id = QRegularExpression("History entry: (\\S+)").match(trashed.out).captured(1).toLatin1();

    const Ran history = runQuarle({"history"});
    EXPECT_TRUE(history.out.contains(" App caches — 8 KB, 2 items, in the Trash until ")) << history.out.constData();
    EXPECT_TRUE(history.out.contains("    ID " + id + "\n    ~/Library/Caches/app/a\n    ~/Library/Caches/app/b\n"));

    EXPECT_EQ(runQuarle({"restore", "0000"}).status, 1);
    EXPECT_EQ(runQuarle({"restore", id, b(home + "/elsewhere")}).status, 1);
    Files::writeText(home + "/Library/Caches/app/a", "new a");
    const Ran restored = runQuarle({"restore", id.left(8), b(home + "/Library/Caches/app/a")});
    EXPECT_EQ(restored.status, 1);
    EXPECT_EQ(restored.out, "Put back 0. 1 couldn't go back: something is in their place.\n    ~/Library/Caches/app/a\n");
    const Ran back = runQuarle({"restore", id, b(home + "/Library/Caches/app/b")});
    EXPECT_EQ(back.out, "Put back 1 item where it was.\n");
    EXPECT_EQ(runQuarle({"expire"}).out, "Nothing of Quarle's has been in the Trash longer than 7 days.\n");
    EXPECT_EQ(runQuarle({"expire", "--days", "soon"}).status, 2);
    EXPECT_EQ(runQuarle({"empty", id}).status, 1) << "not without a yes";
    EXPECT_EQ(runQuarle({"empty", id, "--yes"}).out,
              "Empty App caches for good?\n4 KB will be deleted from the Trash. History won't be able to restore it.\n"
              "Emptied 4 KB. It's free space now.\n");
    const Ran again = runQuarle({"empty", id, "--yes"});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.err, "quarle: Nothing to empty: \"App caches\" was emptied from the Trash.\n");
}

TEST(RemovalVerbs, QuarlesTrashingAtOnceKeepEveryEntry) {
    Sandbox::clearHome();
    const QString home = Sandbox::home();
    constexpr int runs = 4, items = 300;  // more than a checkpoint's hundred: each run saves several times
    std::vector<QList<QByteArray>> args(runs);
    for (int r = 0; r < runs; ++r) {
        args[r] = {"trash", "--title", "run " + QByteArray::number(r)};
        Files::makeDirs(home + QString("/Downloads/run%1").arg(r));
        for (int i = 0; i < items; ++i) {
            const QString path = home + QString("/Downloads/run%1/f%2").arg(r).arg(i);
            Files::writeText(path, "x");
            args[r].append(b(path));
        }
    }
    std::vector<Ran> ran(runs);
    std::vector<std::thread> quarles;
    for (int r = 0; r < runs; ++r) quarles.emplace_back([&, r] { ran[r] = runQuarle(args[r]); });
    for (std::thread& t : quarles) t.join();
    for (const Ran& one : ran) EXPECT_EQ(one.status, 0) << one.err.constData();

    const QList<HistoryEntry> entries = HistoryStore().entries();
    ASSERT_EQ(entries.size(), runs);
    for (const HistoryEntry& e : entries) EXPECT_EQ(e.moved.size(), items) << e.title.toStdString();
}

}  // namespace
