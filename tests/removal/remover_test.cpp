#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "core/home.h"
#include "core/paths.h"
#include "removal/remover.h"
#include "removal/safety.h"
#include "removal/trash.h"
#include "removal_fixture.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

using Fixture::contents;
using Fixture::namesIn;
using State = HistoryEntry::State;

struct RemoverTest : ::testing::Test {
    QString home = Sandbox::home();
    QString trash = Home::trashFolder();
    std::unique_ptr<HistoryStore> store;
    void SetUp() override {
        Sandbox::clearHome();
        store = std::make_unique<HistoryStore>();
    }
    QStringList files(const QString& folder, int n, const QByteArray& text = "data") {
        QStringList paths;
        Files::makeDirs(home + "/" + folder);
        for (int i = 0; i < n; ++i) {
            paths.append(home + "/" + folder + "/f" + QString::number(i));
            Files::writeText(paths.last(), text + QByteArray::number(i));
        }
        return paths;
    }
    HistoryEntry only() {
        EXPECT_EQ(store->entries().size(), 1);
        return store->entries().value(0);
    }
};

TEST_F(RemoverTest, OneEntrySavedAtCheckpointsRefusalsLeaveNoTrace) {
    QStringList paths = files("Projects/build", 250);
    const QString missing = home + "/Projects/gone", keychain = home + "/Library/Keychains";
    Files::makeDirs(keychain);
    const Remover::Outcome out = Remover::trash(paths + QStringList{missing, keychain, "/etc/hostname"}, "Build",
                                                false, *store, {}, {{paths[0], 123}});
    ASSERT_EQ(out.entry.moved.size(), 250);
    EXPECT_EQ(out.entry.moved[0].bytes, 123) << "a size already measured is not measured again";
    EXPECT_EQ(out.entry.bytes, 123 + 249 * 4096);
    EXPECT_EQ(out.refused, (QList<Remover::Refused>{{missing, {Refusal::Kind::missing, missing}},
                                                     {keychain, {Refusal::Kind::protected_, keychain}},
                                                     {"/etc/hostname", {Refusal::Kind::outside, "/etc/hostname"}}}));
    EXPECT_GE(store->saves(), 4) << "the first item, 100, 200 and the end";
    EXPECT_EQ(HistoryStore().entries(), QList<HistoryEntry>{out.entry});
    Fixture::expectEachOnce(paths, {trash}, store->entries());

    const Remover::Outcome none = Remover::trash({missing, keychain}, "Nothing", false, *store);
    EXPECT_TRUE(none.entry.moved.isEmpty());
    EXPECT_EQ(store->entries().size(), 1) << "nothing moved, nothing recorded";
}

TEST_F(RemoverTest, ItemsThatLeftTheTrashElsewhereAreMarkedGoneButNeverConfused) {
    const QStringList paths = files("a", 3);
    const HistoryEntry entry = Remover::trash(paths, "A", false, *store).entry;
    EXPECT_EQ(Remover::syncWithTrash(*store), 0);
    ::unlink(Files::bytes(entry.moved[0].trashed).constData());
    EXPECT_EQ(Remover::syncWithTrash(*store), 4096);
    EXPECT_EQ(only().moved, entry.moved.mid(1));
    EXPECT_EQ(only().state, State::inTrash);

    // Another file later takes a trashed item's name: it is not ours, so it is not put back or deleted.
    ::unlink(Files::bytes(entry.moved[1].trashed).constData());
    Files::writeText(entry.moved[1].trashed, "someone else's");
    EXPECT_FALSE(Remover::isOurs(entry.moved[1]));
    EXPECT_TRUE(Remover::goneFromTrash(entry.moved[1]));
    const Remover::Restored restored = Remover::restore(entry, std::nullopt, *store);
    EXPECT_EQ(restored.count, 1);
    EXPECT_EQ(restored.notBack, QStringList{paths[1]});
    EXPECT_EQ(only().state, State::restored);
    EXPECT_EQ(contents(entry.moved[1].trashed), "someone else's");
    EXPECT_FALSE(Files::exists(paths[1]));
    EXPECT_EQ(contents(paths[2]), "data2");
}

TEST_F(RemoverTest, RestoreLeavesItemsWhoseplaceIsTakenAndPutsBackOnlyWhatIsAsked) {
    const QStringList paths = files("b", 3);
    const HistoryEntry entry = Remover::trash(paths, "B", false, *store).entry;
    Files::writeText(paths[0], "new");
    const Remover::Restored partly = Remover::restore(entry, QSet<QString>{paths[0], paths[1]}, *store);
    EXPECT_EQ(partly.why, (QList<Remover::NotBack>{{paths[0], Trash::Back::occupied}}));
    EXPECT_EQ(partly.count, 1);
    EXPECT_EQ(only().moved, (QList<HistoryEntry::Moved>{entry.moved[0], entry.moved[2]}));
    EXPECT_EQ(only().bytes, 8192);
    EXPECT_EQ(contents(paths[0]), "new");
    EXPECT_EQ(contents(entry.moved[0].trashed), "data0");
    EXPECT_EQ(contents(paths[1]), "data1");
}

TEST_F(RemoverTest, EmptyingAndExpiryTouchOnlyQuarlesOwnItemsInsideATrash) {
    const QStringList paths = files("c", 2);
    HistoryEntry entry = Remover::trash(paths, "C", false, *store).entry;
    Files::writeText(trash + "/files/theirs", "another tool's");
    Files::writeText(trash + "/info/theirs.trashinfo", "[Trash Info]\nPath=/x/theirs\nDeletionDate=2020-01-01T00:00:00\n");
    Files::writeText(trash + "/files/stray", "stray");
    // A history that points outside the Trash, or at a folder that only looks like one.
    const QString precious = files("Documents", 1, "precious")[0];
    Files::makeDirs(home + "/fake/.Trash-0/files");
    Files::writeText(home + "/fake/.Trash-0/files/x", "also precious");
    HistoryEntry forged{QUuid::createUuid(), entry.date.addDays(-30), "Forged", 8192, {}, State::inTrash};
    forged.moved = {{"/x", precious, 4096, {}, {}, {}}, {"/y", home + "/fake/.Trash-0/files/x", 4096, {}, {}, {}}};
    store->add(forged);

    const QDateTime now = entry.date.addDays(2);
    EXPECT_EQ(Remover::expire(*store, 0, now).bytes, 0) << "0 days keeps things until emptied";
    EXPECT_EQ(Remover::expire(*store, 3, now).bytes, 0) << "only the forged entry is that old; it frees nothing";
    EXPECT_EQ(store->current(forged.id)->state, State::emptied);
    EXPECT_EQ(contents(precious), "precious0");
    EXPECT_EQ(contents(home + "/fake/.Trash-0/files/x"), "also precious");
    EXPECT_EQ(Remover::expire(*store, 1, now).bytes, 8192);
    EXPECT_EQ(store->current(entry.id)->state, State::emptied);
    EXPECT_EQ(namesIn(trash + "/files"), (QStringList{"stray", "theirs"}));
    EXPECT_EQ(namesIn(trash + "/info"), QStringList{"theirs.trashinfo"});
    Remover::restore(entry, std::nullopt, *store);
    EXPECT_EQ(store->current(entry.id)->state, State::emptied) << "emptied is final";
}

TEST_F(RemoverTest, FreeNowCommandsAndEmptyingTheWholeTrash) {
    const HistoryEntry freed = Remover::trash(files("d", 2), "D", true, *store).entry;
    EXPECT_EQ(store->current(freed.id)->state, State::permanent);
    EXPECT_TRUE(namesIn(trash + "/files").isEmpty() && namesIn(trash + "/info").isEmpty());

    const HistoryEntry kept = Remover::trash(files("e", 2), "E", false, *store).entry;
    Files::writeText(trash + "/files/theirs", "x");
    EXPECT_TRUE(Remover::command({"false"}, "Fails", 10, *store));
    EXPECT_TRUE(Remover::command({"/no/such/tool"}, "Missing", 10, *store));
    EXPECT_EQ(store->entries().size(), 2);
    EXPECT_FALSE(Remover::command({"true"}, "Simulators", 10, *store));
    EXPECT_FALSE(Remover::command({"empty-trash"}, "Trash", 5000, *store));
    EXPECT_TRUE(namesIn(trash + "/files").isEmpty() && namesIn(trash + "/info").isEmpty());
    const QList<HistoryEntry> all = store->entries();
    ASSERT_EQ(all.size(), 4);
    EXPECT_EQ((std::tuple{all[0].title, all[0].bytes, all[0].state, all[0].moved.size()}),
              (std::tuple{QString("Trash"), qint64(5000), State::permanent, qsizetype(0)}));
    EXPECT_EQ(store->current(kept.id)->state, State::emptied);
}

TEST_F(RemoverTest, NamesThatAreNotUtf8GoAndComeBackByteForByte) {
    const QString odd = home + "/" + Paths::fromBytes(QByteArray("caf\xe9 \xff\x01name", 11));
    Files::writeText(odd, "bytes");
    const HistoryEntry entry = Remover::trash({odd}, "Odd", false, *store).entry;
    ASSERT_EQ(entry.moved.size(), 1);
    EXPECT_FALSE(Files::exists(odd));
    HistoryStore reread;  // through the file
    EXPECT_EQ(Remover::restore(reread.current(entry.id).value(), std::nullopt, reread), (Remover::Restored{1, {}}));
    EXPECT_EQ(namesIn(home), (QStringList{".local", Paths::lastComponent(odd)}));
    EXPECT_EQ(contents(odd), "bytes");
}

TEST_F(RemoverTest, AParentSwappedForALinkAfterTheCheckMovesNothingOutsideHome) {
    const QString outside = Sandbox::scratch("outside");
    Files::writeText(outside + "/x", "not yours to move");
    const QString x = files("swap", 1)[0];
    const Safety::Verdict verdict = Safety::check(x);
    ASSERT_TRUE(verdict.ok());
    ::rename(Files::bytes(home + "/swap").constData(), Files::bytes(home + "/swapped").constData());
    Files::symlink(outside, home + "/swap");
    EXPECT_FALSE(Trash::put(home + "/swap/f0", QDateTime::currentDateTimeUtc(), QUuid()));

    // The same, racing: a thread keeps exchanging the folder with a link to outside.
    Files::writeText(outside + "/f0", "not yours either");
    Files::makeDirs(home + "/race");
    Files::symlink(outside, home + "/race-alt");
    const int realFd = ::open(Files::bytes(home + "/race").constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::atomic<bool> stop{false};
    std::thread flipper([&] {
        const QByteArray a = Files::bytes(home + "/race"), b = Files::bytes(home + "/race-alt");
        while (!stop) {
            ::renameat2(AT_FDCWD, a.constData(), AT_FDCWD, b.constData(), RENAME_EXCHANGE);
            ::close(::openat(realFd, "f0", O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
            ::usleep(100);  // long enough that some checks and moves see each state
        }
    });
    int moved = 0, stopped = 0;  // until both happened a few times
    for (int i = 0; i < 5000 && (moved < 5 || stopped < 5); ++i) {
        const Remover::Outcome o = Remover::trash({home + "/race/f0"}, "Race", false, *store);
        moved += int(o.entry.moved.size());
        stopped += int(o.refused.size() + o.failed.size());
    }
    stop = true;
    flipper.join();
    ::close(realFd);
    EXPECT_GT(moved, 0) << "some moves found the real folder";
    EXPECT_EQ(contents(outside + "/x"), "not yours to move");
    EXPECT_EQ(contents(outside + "/f0"), "not yours either");
    for (const HistoryEntry& e : store->entries())
        for (const HistoryEntry::Moved& m : e.moved) EXPECT_EQ(contents(m.trashed), "");
}

TEST_F(RemoverTest, ItemsMovedJustBeforeAnInterruptionAreTakenIntoHistory) {
    const QStringList paths = files("f", 5);
    HistoryEntry entry = Remover::trash(paths, "F", false, *store).entry;
    entry.moved = entry.moved.mid(0, 3);  // as if stopped before the last save
    const QString file = Sandbox::scratch("h") + "/history.json";
    HistoryStore partial(file);
    partial.add(entry);
    const HistoryEntry lost = Remover::trash(files("g", 2), "G", false, *store).entry;  // never saved at all
    Files::writeText(trash + "/info/h.trashinfo", "[Trash Info]\nPath=" + Files::bytes(home) + "/h\nX-Quarle-Entry=" +
                                                      entry.id.toByteArray(QUuid::WithoutBraces) + "\n");
    Files::touch(trash + "/info/h.trashinfo", 1'000'000'000);  // the move it announced never happened
    Files::writeText(trash + "/info/i.trashinfo", "[Trash Info]\nPath=" + Files::bytes(home) + "/i\n");
    Files::writeText(trash + "/files/evil", "x");  // claims to be Quarle's and to come from outside
    Files::writeText(trash + "/info/evil.trashinfo", "[Trash Info]\nPath=../../../../etc/evil\nX-Quarle-Entry=" +
                                                         entry.id.toByteArray(QUuid::WithoutBraces) + "\n");

    EXPECT_EQ(Remover::recoverInterrupted(partial), 4);
    EXPECT_EQ(partial.current(entry.id)->moved.size(), 5);
    const std::optional<HistoryEntry> found = partial.current(lost.id);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->moved.size(), 2);
    EXPECT_EQ(found->date, lost.date);
    EXPECT_FALSE(Files::exists(trash + "/info/h.trashinfo"));
    EXPECT_TRUE(Files::exists(trash + "/info/i.trashinfo")) << "another tool's, left alone";
    EXPECT_TRUE(Files::exists(trash + "/info/evil.trashinfo"));
    EXPECT_EQ(Remover::recoverInterrupted(partial), 0);
    Fixture::expectEachOnce(paths, {trash}, partial.entries());
}

}  // namespace
