// The three promises of emptying and putting back, each under the faults that once broke it:
// nothing is lost, nothing outside Quarle's own items is touched, and no failure is silent.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <thread>

#include "core/home.h"
#include "core/paths.h"
#include "removal/remover.h"
#include "removal/trash.h"
#include "removal_fixture.h"
#include "support/files.h"
#include "support/mount.h"
#include "support/sandbox.h"

namespace {

using State = HistoryEntry::State;

struct Promises : ::testing::Test {
    QString home = Sandbox::home();
    QString trash = Home::trashFolder();
    void SetUp() override { Sandbox::clearHome(); }
    QString folderOf(const QString& name, int n) {
        const QString dir = home + "/" + name;
        Files::makeDirs(dir);
        for (int i = 0; i < n; ++i) Files::writeText(dir + "/f" + QString::number(i), "x");
        return dir;
    }
};

// --- Nothing lost ---

TEST_F(Promises, RestoreRacingAnEmptyingBringsBackAllOrNothing) {
    const quint32 seed = Fixture::timingSeed();
    QRandomGenerator timing(seed);
    for (int round = 0; round < 4; ++round) {
        const QString dir = folderOf("race", 2000);
        HistoryStore first;
        const HistoryEntry entry = Remover::trash({dir}, "Race", false, first).entry;
        const int delayMicros = int(timing.bounded(0, 20000));
        std::thread emptying([&] {
            HistoryStore own;
            Remover::expire(own, 1, entry.date.addDays(3));
        });
        ::usleep(useconds_t(delayMicros));
        HistoryStore other;
        const Remover::Restored back = Remover::restore(entry, std::nullopt, other);
        emptying.join();
        const State state = HistoryStore().current(entry.id)->state;
        SCOPED_TRACE("QUARLE_TEST_SEED=" + std::to_string(seed) + " round " + std::to_string(round));
        if (back.count == 1) {
            EXPECT_EQ(Fixture::namesIn(dir).size(), 2000) << "put back whole";
            EXPECT_EQ(state, State::restored);
        } else {
            EXPECT_FALSE(Files::exists(dir));
            EXPECT_EQ(state, State::emptied);
        }
        Files::removeTree(dir);
    }
}

TEST_F(Promises, AnEmptyingStoppedHalfWayIsFinishedNeverPutBackInPart) {
    const QString dir = folderOf("half", 20);
    HistoryStore store;
    const HistoryEntry entry = Remover::trash({dir}, "Half", false, store).entry;
    // What an emptying does before it is killed: the private name, then part of the erasing.
    Trash::Batch batch;
    QString hidden;
    ASSERT_TRUE(store.edit(entry.id, [&](HistoryEntry& e) { hidden = e.moved[0].trashed = *batch.claim(e.moved[0].trashed); }));
    ::unlink(Files::bytes(hidden + "/f0").constData());

    const Remover::Restored back = Remover::restore(entry, std::nullopt, store);
    EXPECT_EQ(back.why, (QList<Remover::NotBack>{{dir, Trash::Back::beingEmptied}}));
    EXPECT_FALSE(Files::exists(dir));
    Remover::syncWithTrash(store);
    EXPECT_EQ(store.current(entry.id)->state, State::emptied);
    EXPECT_TRUE(Fixture::namesIn(trash + "/files").isEmpty() && Fixture::namesIn(trash + "/info").isEmpty());
}

TEST_F(Promises, TwoPartialRestoresAtOnceKeepTheEntryTrue) {
    const QString dir = folderOf("two", 40);
    QStringList paths;
    for (const QString& name : Fixture::namesIn(dir)) paths.append(dir + "/" + name);
    HistoryStore store;
    const HistoryEntry entry = Remover::trash(paths, "Two", false, store).entry;
    QSet<QString> a, b;
    for (int i = 0; i < paths.size(); ++i) (i % 2 ? a : b).insert(paths[i]);
    std::thread one([&] {
        HistoryStore own;
        Remover::restore(entry, a, own);
    });
    HistoryStore own;
    Remover::restore(entry, b, own);
    one.join();
    EXPECT_EQ(Fixture::namesIn(dir).size(), 40);
    EXPECT_EQ(HistoryStore().current(entry.id)->state, State::restored);
}

// A damaged history naming the Trash itself ("files/.", "files/..") empties nothing at all.
TEST_F(Promises, AHistoryNamingTheTrashItselfEmptiesNothing) {
    Files::makeDirs(trash + "/files");
    Files::makeDirs(trash + "/info");
    Files::writeText(trash + "/files/theirs", "another tool's");
    for (const QString& name : {QStringLiteral("."), QStringLiteral("..")}) {
        HistoryStore store;
        HistoryEntry forged{QUuid::createUuid(), QDateTime::currentDateTimeUtc().addDays(-30), "Forged", 0, {}, State::inTrash};
        forged.moved = {{home + "/x", trash + "/files/" + name, 0, {}, {}, {}}};
        store.add(forged);
        Remover::expire(store, 1, QDateTime::currentDateTimeUtc());
        EXPECT_EQ(Fixture::contents(trash + "/files/theirs"), "another tool's");
        EXPECT_TRUE(Files::exists(trash + "/info"));
    }
}

TEST_F(Promises, AnItemOnADriveAttachedUnderAnotherNumberIsStillOurs) {
    HistoryStore store;
    HistoryEntry::Moved m = Remover::trash({folderOf("usb", 1)}, "Usb", false, store).entry.moved.value(0);
    if (!m.born) GTEST_SKIP() << "this file system records no birth time";
    m.dev = *m.dev + 1;
    EXPECT_TRUE(Remover::isOurs(m));
    EXPECT_FALSE(Remover::goneFromTrash(m));
}

// --- Nothing else touched ---

TEST_F(Promises, EmptyingNeverEntersAMountAndAFolderHoldingOneStaysPut) {
    const QString outside = Sandbox::scratch("outside");
    Files::writeText(outside + "/precious", "outside the home");
    const QString dir = folderOf("mounted", 2);
    Files::makeDirs(dir + "/bound");
    const TestMount bound = TestMount::bind(outside, dir + "/bound");
    if (!bound.ok()) GTEST_SKIP() << "mounting is refused here: " << bound.why().toStdString();
    HistoryStore store;
    const Remover::Outcome refused = Remover::trash({dir}, "Mounted", false, store);
    EXPECT_EQ(refused.holdingMounts, QStringList{dir});
    EXPECT_TRUE(refused.entry.moved.isEmpty());

    // A mount made inside an item already in the Trash is left alone, and the item stays listed.
    const QString plain = folderOf("plain", 2);
    Files::makeDirs(plain + "/sub");
    const HistoryEntry entry = Remover::trash({plain}, "Plain", false, store).entry;
    ASSERT_EQ(entry.moved.size(), 1);
    const TestMount inside = TestMount::bind(outside, entry.moved[0].trashed + "/sub");
    const TestMount tmp = TestMount::tmpfs(entry.moved[0].trashed + "/tmp", 1);
    ASSERT_TRUE(inside.ok() && tmp.ok());
    Files::writeText(entry.moved[0].trashed + "/tmp/t", "tmpfs");
    const Remover::Emptied emptied = Remover::empty(entry, store);
    EXPECT_EQ(emptied.left, QStringList{plain});
    EXPECT_EQ(Fixture::contents(outside + "/precious"), "outside the home");
    EXPECT_EQ(store.current(entry.id)->state, State::inTrash);
    EXPECT_EQ(store.current(entry.id)->moved.value(0).trashed, entry.moved[0].trashed) << "still restorable";
    // The erasing itself stops at each mount even when asked directly.
    EXPECT_FALSE(Trash::erase(entry.moved[0].trashed));
    EXPECT_EQ(Fixture::contents(outside + "/precious"), "outside the home");
    EXPECT_EQ(Fixture::contents(entry.moved[0].trashed + "/tmp/t"), "tmpfs");
}

TEST_F(Promises, AnUnusableHomeTrashRefusesInsteadOfUsingTheDisksTop) {
    const QString elsewhere = Sandbox::scratch("real-trash");
    Files::makeDirs(Paths::parentOf(trash));
    Files::symlink(elsewhere, trash);
    const bool topBefore = Files::exists("/.Trash-" + QString::number(::geteuid()));
    const QString dir = folderOf("kept", 1);
    HistoryStore store;
    const Remover::Outcome out = Remover::trash({dir}, "Kept", false, store);
    EXPECT_EQ(out.failed.size(), 1);
    EXPECT_TRUE(Files::exists(dir + "/f0"));
    EXPECT_EQ(Files::exists("/.Trash-" + QString::number(::geteuid())), topBefore);
    ::unlink(Files::bytes(trash).constData());
}

// --- Never silent ---

TEST_F(Promises, RestoreSaysWhyAndMakesMissingFoldersPrivate) {
    const QString dir = folderOf("priv", 3);
    HistoryStore store;
    const HistoryEntry files = Remover::trash({dir + "/f0", dir + "/f1", dir + "/f2"}, "Files", false, store).entry;
    const HistoryEntry folder = Remover::trash({dir}, "The folder", false, store).entry;
    ::unlink(Files::bytes(files.moved[1].trashed).constData());  // left the Trash some other way
    const Remover::Restored back = Remover::restore(files, QSet<QString>{dir + "/f0", dir + "/f1"}, store);
    EXPECT_EQ(back.count, 1);
    EXPECT_EQ(back.why, (QList<Remover::NotBack>{{dir + "/f1", Trash::Back::missing}}));
    EXPECT_EQ(back.foldersIn, QStringList{"The folder"});
    struct stat st;
    ASSERT_EQ(::stat(Files::bytes(dir).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);

    Files::removeTree(dir);
    Files::writeText(dir, "a file where the folder was");
    EXPECT_EQ(Remover::restore(files, std::nullopt, store).why,
              (QList<Remover::NotBack>{{dir + "/f2", Trash::Back::folderUnusable}}));
}

TEST_F(Promises, HistoryThatCannotBeSavedOrIsAPipeIsReported) {
    const QString blocker = Sandbox::scratch("data") + "/file";
    Files::writeText(blocker, "a file where the data folder goes");
    HistoryStore unsaved(blocker + "/history.json");
    const Remover::Outcome out = Remover::trash({folderOf("u", 1)}, "Unsaved", false, unsaved);
    EXPECT_EQ(out.entry.moved.size(), 1);
    EXPECT_FALSE(out.saved);

    // A pipe for the history, its lock or an info file is damage, not something to wait on.
    const QString data = Sandbox::scratch("fifo");
    ASSERT_EQ(::mkfifo(Files::bytes(data + "/history.json").constData(), 0600), 0);
    ASSERT_EQ(::mkfifo(Files::bytes(data + "/history.json.lock").constData(), 0600), 0);
    Files::makeDirs(trash + "/info");
    ASSERT_EQ(::mkfifo(Files::bytes(trash + "/info/p.trashinfo").constData(), 0600), 0);
    HistoryStore piped(data + "/history.json");
    EXPECT_TRUE(piped.entries().isEmpty());
    Remover::syncWithTrash(piped);
}

}  // namespace
