// Nothing is lost when things go wrong: after each fault every item is exactly once at its place
// or in a Trash with its info file, and (after the next start) recorded in History.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QRandomGenerator>

#include "core/home.h"
#include "core/paths.h"
#include "removal/remover.h"
#include "removal_fixture.h"
#include "support/as_user.h"
#include "support/files.h"
#include "support/mount.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

extern char** environ;

namespace {

struct FaultTest : ::testing::Test {
    QString home = Sandbox::home();
    QString trash = Home::trashFolder();
    void SetUp() override { Sandbox::clearHome(); }
    QStringList files(const QString& folder, int n) {
        Files::makeDirs(folder);
        QStringList paths;
        for (int i = 0; i < n; ++i) {
            paths.append(folder + QStringLiteral("/f%1").arg(i, 4, 10, QLatin1Char('0')));
            Files::writeText(paths.last(), QByteArray::number(i));
        }
        return paths;
    }
};

// Writes to `path` until the file system is full.
void fill(const QString& path) {
    const int fd = ::open(Files::bytes(path).constData(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    const QByteArray block(4096, 'f');
    while (::write(fd, block.constData(), std::size_t(block.size())) > 0) {
    }
    ::close(fd);
}

// The real program, started as a user starts it, killed after `millis`.
void trashAndKill(const QStringList& paths, int millis) {
    std::vector<QByteArray> store{QUARLE_BINARY, "trash"};
    for (const QString& p : paths) store.push_back(Paths::toBytes(p));
    std::vector<char*> argv;
    for (QByteArray& a : store) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    ASSERT_EQ(::posix_spawn(&pid, QUARLE_BINARY, &quiet, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&quiet);
    ::usleep(useconds_t(millis) * 1000);
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
}

TEST_F(FaultTest, KilledWhileTrashingAThousandItems) {
    const QStringList originals = files(home + "/k", 1000);
    const quint32 seed = Fixture::timingSeed();
    QRandomGenerator timing(seed);
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE("QUARLE_TEST_SEED=" + std::to_string(seed));
        QStringList left;
        for (const QString& p : originals)
            if (Files::exists(p)) left.append(p);
        if (left.isEmpty()) break;
        trashAndKill(left, int(timing.bounded(50, 1200)));

        const QList<HistoryEntry> saved = HistoryStore().entries();
        Fixture::expectEachOnce(originals, {trash}, saved, false);
        QSet<QString> recorded;
        for (const HistoryEntry& e : saved)
            for (const HistoryEntry::Moved& m : e.moved) recorded.insert(m.trashed);
        int unrecorded = 0;
        for (const Fixture::TrashItem& item : Fixture::trashItems(trash, Home::dataFolder()))
            unrecorded += !recorded.contains(item.trashed);
        EXPECT_LE(unrecorded, 100) << "at most the last checkpoint window";

        EXPECT_EQ(runQuarle({"history"}).status, 0);  // the next start takes them in
        Fixture::expectEachOnce(originals, {trash}, HistoryStore().entries());
    }
}

TEST_F(FaultTest, FullFileSystemsLoseNothing) {
    const QString vol = home + "/vol";
    const TestMount tmpfs = TestMount::tmpfs(vol, 1);
    if (!tmpfs.ok()) GTEST_SKIP() << "no second file system: " << tmpfs.why().toStdString();
    const QStringList onVolume = files(vol + "/items", 20);
    const QString filler = vol + "/filler";
    fill(filler);

    HistoryStore store;
    const Remover::Outcome full = Remover::trash(onVolume, "Full", false, store);
    EXPECT_EQ(full.failed.size(), 20);
    const QString volTrash = vol + "/.Trash-" + QString::number(::geteuid());
    Fixture::expectEachOnce(onVolume, {volTrash, trash}, store.entries());
    EXPECT_TRUE(Fixture::namesIn(volTrash + "/info").isEmpty()) << "no info file is left behind";

    ::unlink(Files::bytes(filler).constData());
    const Remover::Outcome roomy = Remover::trash(onVolume, "Room again", false, store);
    EXPECT_EQ(roomy.entry.moved.size(), 20);
    Fixture::expectEachOnce(onVolume, {volTrash, trash}, store.entries());

    // History on a full disk: the items move, the save fails, the next start records them.
    const QStringList atHome = files(home + "/h", 5);
    HistoryStore onFull(vol + "/Quarle/history.json");
    fill(filler);
    EXPECT_EQ(Remover::trash(atHome, "Unsaved", false, onFull).entry.moved.size(), 5);
    ::unlink(Files::bytes(filler).constData());
    EXPECT_TRUE(HistoryStore(onFull.url()).entries().isEmpty());
    HistoryStore later(onFull.url());
    Remover::syncWithTrash(later);
    Fixture::expectEachOnce(atHome, {trash}, later.entries());
}

// A drive inside the home that is unmounted for a while: its items are still in its Trash, so
// History neither forgets them nor calls them emptied, and empties them once the drive is back.
TEST_F(FaultTest, ItemsOnADriveThatIsAwayWaitForIt) {
    const QString drive = Sandbox::scratch("drive");
    const TestMount tmpfs = TestMount::tmpfs(drive, 1);
    if (!tmpfs.ok()) GTEST_SKIP() << "no second file system: " << tmpfs.why().toStdString();
    const QString mnt = home + "/mnt";
    Files::makeDirs(mnt);
    auto plugged = std::make_unique<TestMount>(TestMount::bind(drive, mnt));
    ASSERT_TRUE(plugged->ok()) << plugged->why().toStdString();
    const QStringList onDrive = files(mnt + "/items", 3);
    HistoryStore store;
    const HistoryEntry entry = Remover::trash(onDrive, "On the drive", false, store).entry;
    ASSERT_EQ(entry.moved.size(), 3);
    ASSERT_TRUE(entry.moved[0].trashed.startsWith(mnt + "/.Trash-"));

    plugged.reset();  // unplugged
    ASSERT_FALSE(Files::exists(entry.moved[0].trashed));
    EXPECT_EQ(Remover::syncWithTrash(store), 0);
    EXPECT_EQ(Remover::restore(entry, std::nullopt, store).count, 0);
    EXPECT_EQ(Remover::expire(store, 1, entry.date.addDays(3)).bytes, 0);
    EXPECT_EQ(*store.current(entry.id), entry) << "still in the drive's Trash, all three";

    plugged = std::make_unique<TestMount>(TestMount::bind(drive, mnt));
    ASSERT_TRUE(plugged->ok());
    EXPECT_EQ(Remover::syncWithTrash(store), 0);
    EXPECT_EQ(Remover::expire(store, 1, entry.date.addDays(3)).bytes, entry.bytes);
    EXPECT_EQ(store.current(entry.id)->state, HistoryEntry::State::emptied);
    EXPECT_TRUE(Fixture::namesIn(mnt + "/.Trash-" + QString::number(::geteuid()) + "/files").isEmpty());
}

TEST_F(FaultTest, AFolderTheUserMayNotChangeKeepsItsItems) {
    if (!AsUser::canDrop()) GTEST_SKIP() << "needs root to become an unprivileged user";
    const QString own = home + "/nobody";
    const QStringList locked = files(own + "/locked", 3);
    for (const QString& p : QStringList{own, own + "/locked"} + locked) ::chown(Files::bytes(p).constData(), 65534, 65534);
    ::chmod(Files::bytes(own + "/locked").constData(), 0555);
    const auto answer = AsUser::run([&] {
        ::setenv("XDG_DATA_HOME", Files::bytes(own + "/.local/share").constData(), 1);
        HistoryStore store(own + "/history.json");
        const Remover::Outcome out = Remover::trash(locked, "Locked", false, store);
        return QByteArray::number(out.failed.size()) + " " + QByteArray::number(store.entries().size());
    });
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, "3 0");
    Fixture::expectEachOnce(locked, {own + "/.local/share/Trash"}, {});
    EXPECT_TRUE(Fixture::namesIn(own + "/.local/share/Trash/info").isEmpty());
}

}  // namespace
