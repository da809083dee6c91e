#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/home.h"
#include "core/paths.h"
#include "removal/trash.h"
#include "removal/trash_info.h"
#include "removal_fixture.h"
#include "support/files.h"
#include "support/mount.h"
#include "support/sandbox.h"

namespace {

using Fixture::contents;
using Fixture::namesIn;

const QDateTime when = QDateTime::fromSecsSinceEpoch(1'740'000'000, Qt::UTC);
const QUuid entryId = QUuid::createUuid();

int modeOf(const QString& path) {
    struct stat st;
    return ::lstat(Files::bytes(path).constData(), &st) == 0 ? int(st.st_mode & 07777) : -1;
}

TEST(TrashInfo, KeepsPathsAsPercentEncodedBytesAndRejectsDamagedFiles) {
    const QString odd = Paths::fromBytes(QByteArray("/h/a b%#?+\xc3\xa9\xff\n", 14));
    const QByteArray text = TrashInfo::format(odd, when, entryId);
    EXPECT_TRUE(text.startsWith("[Trash Info]\nPath=/h/a%20b%25%23%3F%2B%C3%A9%FF%0A\nDeletionDate=" +
                                when.toLocalTime().toString("yyyy-MM-ddTHH:mm:ss").toLatin1() + "\n"))
        << text.constData();
    EXPECT_EQ(TrashInfo::parse(text, "/elsewhere"), (TrashInfo::Parsed{odd, when, entryId}));
    EXPECT_EQ(TrashInfo::parse("# made by hand\r\n\r\n[Trash Info]\r\nPath=dir/f%20g\r\n", "/mnt/usb"),
              (TrashInfo::Parsed{"/mnt/usb/dir/f g", std::nullopt, QUuid()}));
    for (const QByteArray& damaged : {
             QByteArray("Path=/h/x\nDeletionDate=2025-01-01T00:00:00\n"),  // no group line
             QByteArray("[Other]\nPath=/h/x\n[Trash Info]\nPath=/h/y\n"),  // not first
             QByteArray("[Trash Info]\nPath=../../etc/passwd\n"), QByteArray("[Trash Info]\nPath=a/%2E%2E/b\n"),
             QByteArray("[Trash Info]\nPath=/h/./x\n"), QByteArray("[Trash Info]\nPath=/h/%zz\n"),
             QByteArray("[Trash Info]\nPath=/h/%4\n"), QByteArray("[Trash Info]\nPath=/h/%00x\n"),
             QByteArray("[Trash Info]\nDeletionDate=2025-01-01T00:00:00\n")})
        EXPECT_EQ(TrashInfo::parse(damaged, "/mnt"), std::nullopt) << damaged.constData();
}

struct TrashTest : ::testing::Test {
    QString home = Sandbox::home();
    QString trash = Home::trashFolder();
    void SetUp() override { Sandbox::clearHome(); }
    QString file(const QString& relative, const QByteArray& text = "data") {
        Files::makeDirs(Paths::parentOf(home + "/" + relative));
        Files::writeText(home + "/" + relative, text);
        return home + "/" + relative;
    }
};

TEST_F(TrashTest, ClaimsAFreeNameAndNeverReplacesWhatIsInTheTrash) {
    const QString x = file("a/x", "mine");
    Files::makeDirs(trash + "/files");
    Files::makeDirs(trash + "/info");
    Files::writeText(trash + "/files/x", "stray");  // no info file: no tool's entry
    Files::writeText(trash + "/info/x.2.trashinfo", "[Trash Info]\nPath=/elsewhere/x\n");  // mid-move elsewhere
    const QByteArray before = Fixture::treeHash(trash);

    const auto put = Trash::put(x, when, entryId);
    ASSERT_TRUE(put);
    EXPECT_EQ(put->trashed, trash + "/files/x.3");
    EXPECT_EQ(contents(put->trashed), "mine");
    EXPECT_EQ(TrashInfo::parse(contents(trash + "/info/x.3.trashinfo"), "/")->original, x);
    EXPECT_EQ(contents(trash + "/files/x"), "stray");
    ASSERT_TRUE(Trash::erase(put->trashed));
    EXPECT_EQ(Fixture::treeHash(trash), before) << "erasing left exactly what was there";
    EXPECT_FALSE(Trash::erase(home + "/a/files/x")) << "not a Trash";
}

TEST_F(TrashTest, CreatesAPrivateHomeTrashAndTrashesTheSamePathAgainUnderNewNames) {
    const QString cwd = Sandbox::scratch("cwd");
    ASSERT_EQ(::chdir(Files::bytes(cwd).constData()), 0);
    const QByteArray xdg = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", "relative/share");  // ignored: not absolute
    QStringList trashed;
    for (int i = 0; i < 3; ++i) trashed.append(Trash::put(file("same"), when, entryId).value_or(Trash::Put{}).trashed);
    qputenv("XDG_DATA_HOME", xdg);
    ASSERT_EQ(::chdir("/"), 0);
    EXPECT_EQ(trashed, (QStringList{trash + "/files/same", trash + "/files/same.2", trash + "/files/same.3"}));
    EXPECT_TRUE(namesIn(cwd).isEmpty());
    for (const QString& folder : {home + "/.local", home + "/.local/share", trash, trash + "/files", trash + "/info"})
        EXPECT_EQ(modeOf(folder), 0700);

    // A 255-byte name gets a shorter one in the Trash (a whole character shorter) and comes back whole.
    const QString longName = QString(127, QChar(0xe9)) + "x";  // 254 bytes + 1
    const QString item = file(longName);
    const auto put = Trash::put(item, when, entryId);
    ASSERT_TRUE(put);
    EXPECT_LE(Paths::toBytes(Paths::lastComponent(put->trashed)).size(), 245);
    EXPECT_TRUE(Paths::lastComponent(put->trashed).startsWith(QString(122, QChar(0xe9))));
    EXPECT_EQ(Trash::putBack(put->trashed, item), Trash::Back::done);
    EXPECT_EQ(contents(item), "data");
}

TEST_F(TrashTest, PutsBackOnlyWhereNothingStandsAndRebuildsMissingFolders) {
    const QString x = file("deep/er/x", "original");
    const auto put = Trash::put(x, when, entryId);
    ASSERT_TRUE(put);
    Files::writeText(x, "newer file");
    EXPECT_EQ(Trash::putBack(put->trashed, x), Trash::Back::occupied);
    Files::removeTree(x);
    Files::makeDirs(x);
    EXPECT_EQ(Trash::putBack(put->trashed, x), Trash::Back::occupied);
    Files::removeTree(x);
    Files::symlink("/nowhere", x);
    EXPECT_EQ(Trash::putBack(put->trashed, x), Trash::Back::occupied);
    EXPECT_EQ(contents(put->trashed), "original") << "both kept";
    Files::removeTree(home + "/deep");
    EXPECT_EQ(Trash::putBack(put->trashed, x), Trash::Back::done);
    EXPECT_EQ(contents(x), "original");
    EXPECT_TRUE(namesIn(trash + "/info").isEmpty());
    EXPECT_EQ(Trash::putBack(put->trashed, x), Trash::Back::missing);
}

TEST_F(TrashTest, ErasesTreesDeeperThanAPathCanNameAndReadOnlyFolders) {
    const QString top = home + "/tree";
    Files::makeDirs(top + "/ro/inner");
    file("tree/ro/inner/f");
    ::chmod(Files::bytes(top + "/ro").constData(), 0500);
    int fd = ::open(Files::bytes(top).constData(), O_RDONLY | O_DIRECTORY);
    const QByteArray longName(200, 'n');
    for (int level = 0; level < 40; ++level) {  // 8,000 bytes of path
        ASSERT_EQ(::mkdirat(fd, longName.constData(), 0755), 0);
        const int next = ::openat(fd, longName.constData(), O_RDONLY | O_DIRECTORY);
        ::close(::openat(next, "f", O_CREAT | O_WRONLY, 0644));
        ::close(fd);
        fd = next;
    }
    ::close(fd);
    const auto put = Trash::put(top, when, entryId);
    ASSERT_TRUE(put);
    EXPECT_TRUE(Trash::erase(put->trashed));
    EXPECT_TRUE(namesIn(trash + "/files").isEmpty());
    EXPECT_TRUE(namesIn(trash + "/info").isEmpty());
}

TEST_F(TrashTest, AnotherFileSystemUsesItsOwnTrashOnlyWhenThatIsSafe) {
    const QString mnt = home + "/mnt";
    const TestMount tmpfs = TestMount::tmpfs(mnt, 4);
    if (!tmpfs.ok()) GTEST_SKIP() << "no second file system: " << tmpfs.why().toStdString();
    const QString uid = QString::number(::geteuid());
    const auto trashIn = [&](const QString& relative) {
        const auto put = Trash::put(file("mnt/" + relative), when, entryId);
        return put ? put->trashed : QString();
    };

    EXPECT_EQ(trashIn("a"), mnt + "/.Trash-" + uid + "/files/a");
    EXPECT_EQ(modeOf(mnt + "/.Trash-" + uid), 0700);
    EXPECT_EQ(contents(mnt + "/.Trash-" + uid + "/info/a.trashinfo").split('\n')[1], "Path=a") << "relative to the top";
    EXPECT_TRUE(namesIn(trash + "/files").isEmpty()) << "never the home Trash, and never a copy";

    Files::makeDirs(mnt + "/.Trash");
    ::chmod(Files::bytes(mnt + "/.Trash").constData(), 0777);  // shared but not sticky: not used
    EXPECT_EQ(trashIn("b"), mnt + "/.Trash-" + uid + "/files/b");
    ::chmod(Files::bytes(mnt + "/.Trash").constData(), 01777);
    EXPECT_EQ(trashIn("c"), mnt + "/.Trash/" + uid + "/files/c");
    EXPECT_EQ(contents(mnt + "/.Trash/" + uid + "/info/c.trashinfo").split('\n')[1], "Path=c");
    EXPECT_EQ(Trash::putBack(mnt + "/.Trash/" + uid + "/files/c", mnt + "/c"), Trash::Back::done);

    // Trash folders that are links, someone else's, or open to others are never used.
    Files::removeTree(mnt + "/.Trash");
    const QString decoy = Sandbox::scratch("decoy");
    ::chmod(Files::bytes(decoy).constData(), 01777);
    Files::symlink(decoy, mnt + "/.Trash");
    EXPECT_EQ(trashIn("d"), mnt + "/.Trash-" + uid + "/files/d");
    const QString own = mnt + "/.Trash-" + uid;
    ::chmod(Files::bytes(own).constData(), 0777);
    EXPECT_EQ(trashIn("e"), QString());
    ::chmod(Files::bytes(own).constData(), 0700);
    ::chown(Files::bytes(own).constData(), 65534, 65534);
    EXPECT_EQ(trashIn("f"), QString());
    Files::removeTree(own);
    Files::symlink(decoy, own);
    EXPECT_EQ(trashIn("g"), QString());
    for (const QString& left : {"e", "f", "g"}) EXPECT_TRUE(Files::exists(mnt + "/" + left)) << "untouched";
    EXPECT_TRUE(namesIn(decoy).isEmpty()) << "nothing went through a link";
}

}  // namespace
