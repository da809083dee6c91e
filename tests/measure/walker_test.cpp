#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <QProcess>

#include "core/paths.h"
#include "measure/walker.h"
#include "support/as_user.h"
#include "support/files.h"
#include "support/mount.h"
#include "support/sandbox.h"

namespace {

const qint64 MiB = 1024 * 1024;

// Sizes through both walks and checks they agree.
WalkResult measure(const QString& path) {
    const WalkResult parallel = Walker::size(path, true);
    const WalkResult single = Walker::size(path, false);
    EXPECT_EQ(parallel, single) << Paths::toBytes(path).constData();
    return parallel;
}

TEST(Walker, HardLinksAreChargedOncePerRun) {
    const QString root = Sandbox::scratch("links");
    Files::makeDirs(root + "/a/b");
    Files::write(root + "/a/big", MiB);
    Files::hardlink(root + "/a/big", root + "/a/b/same");
    Files::hardlink(root + "/a/big", root + "/third");
    Files::write(root + "/single", 8192);
    const qint64 big = Files::allocated(root + "/a/big");

    const WalkResult r = measure(root);
    EXPECT_EQ(r.bytes, Files::diskUsage(root));
    EXPECT_EQ(r.files, 4);  // every name is a file seen; its blocks are paid once

    // Separate runs each pay for it: a size of one link is the file's own blocks.
    EXPECT_EQ(Walker::size(root + "/third", true).bytes, big);
    EXPECT_EQ(Walker::size(root + "/a/b", true).bytes, big + Files::allocated(root + "/a/b"));

    // Within one run the record is shared: the second walk through the same Dedupe pays nothing,
    // neither the files nor the folders.
    Dedupe seen;
    EXPECT_EQ(Walker::walk(root + "/a", Walker::device(root), seen, {}).bytes, Files::diskUsage(root + "/a"));
    EXPECT_EQ(Walker::walk(root + "/a", Walker::device(root), seen, {}).bytes, 0);
}

TEST(Walker, ClonesPayTheirSharedBlocksOnce) {
    Dedupe seen;
    Walker::Entry clone;
    clone.isFile = true;
    clone.allocated = 10 * MiB;
    clone.mayShare = true;
    clone.cloneID = 42;
    clone.privateSize = MiB;
    clone.fileID = 1;
    EXPECT_EQ(seen.charge(clone), 10 * MiB);
    clone.fileID = 2;
    EXPECT_EQ(seen.charge(clone), MiB);
    clone.privateSize = 50 * MiB;
    EXPECT_EQ(seen.charge(clone), 10 * MiB);  // more private than allocated is taken as allocated
    clone.privateSize = -5;
    EXPECT_EQ(seen.charge(clone), 0);
    clone.links = 2;  // a hard-linked clone pays once for the link, then as a clone
    clone.fileID = 9;
    clone.privateSize = MiB;
    EXPECT_EQ(seen.charge(clone), MiB);
    EXPECT_EQ(seen.charge(clone), 0);
    EXPECT_FALSE(Walker::cloneInfo(Sandbox::root()).has_value());  // no clone lookups on Linux yet
}

TEST(Walker, SymbolicLinksAreNeverFollowed) {
    const QString root = Sandbox::scratch("symlinks");
    const QString big = Sandbox::scratch("big-target");
    Files::write(big + "/data", 4 * MiB);
    Files::makeDirs(root + "/sub");
    Files::write(root + "/sub/own", 4096);
    Files::symlink(big, root + "/to-big");
    Files::symlink(big + "/data", root + "/to-file");
    Files::symlink("..", root + "/sub/up");
    Files::symlink("/", root + "/sub/slash");
    Files::symlink(root, root + "/sub/self");
    Files::symlink("nowhere/at/all", root + "/dangling");
    Files::symlink("loop-b", root + "/loop-a");
    Files::symlink("loop-a", root + "/loop-b");

    const WalkResult r = measure(root);
    EXPECT_EQ(r.bytes, Files::diskUsage(root));  // links count nothing, followed or not
    EXPECT_EQ(r.files, 1);
    EXPECT_EQ(Walker::size(root + "/to-big", true), WalkResult{});
    EXPECT_EQ(Walker::size(root + "/dangling", true), WalkResult{});
}

TEST(Walker, ListingReportsEveryEntryAsItIs) {
    const QString root = Sandbox::scratch("list");
    Files::makeDirs(root + "/folder");
    Files::write(root + "/file", 10000);
    Files::hardlink(root + "/file", root + "/file2");
    Files::symlink("file", root + "/link");
    Files::touch(root + "/file", 1'700'000'012);
    const timespec times[2] = {{1'600'000'012, 900'000'000}, {1'600'000'012, 900'000'000}};
    ::utimensat(AT_FDCWD, Files::bytes(root + "/folder").constData(), times, 0);

    QMap<QString, Walker::Entry> seen;
    EXPECT_TRUE(Walker::list(root, std::nullopt, [&](const Walker::Entry& e) { seen.insert(e.name, e); }));
    ASSERT_EQ(seen.keys(), QStringList({"file", "file2", "folder", "link"}));
    EXPECT_TRUE(seen["file"].isFile && !seen["file"].isDir);
    EXPECT_EQ(seen["file"].links, 2u);
    EXPECT_EQ(seen["file"].allocated, Files::allocated(root + "/file"));
    EXPECT_EQ(seen["file"].fileID, seen["file2"].fileID);
    EXPECT_EQ(seen["file"].modified->toSecsSinceEpoch(), 1'700'000'012);
    EXPECT_TRUE(seen["folder"].isDir);
    EXPECT_EQ(seen["folder"].allocated, 0);
    EXPECT_EQ(seen["folder"].modified->toSecsSinceEpoch(), 1'600'000'012);  // 12.9 s reads as 12
    EXPECT_FALSE(seen["link"].isDir || seen["link"].isFile);
    EXPECT_EQ(seen["link"].links, 1u);
    EXPECT_EQ(seen["link"].device, *Walker::device(root));

    EXPECT_FALSE(Walker::list(root + "/missing", std::nullopt, [](const Walker::Entry&) { FAIL(); }));
    EXPECT_FALSE(Walker::list(root + "/file", std::nullopt, [](const Walker::Entry&) { FAIL(); }));
    EXPECT_FALSE(Walker::list(root + "/link", std::nullopt, [](const Walker::Entry&) { FAIL(); }));
    const QString empty = Sandbox::scratch("empty");
    EXPECT_TRUE(Walker::list(empty, std::nullopt, [](const Walker::Entry&) { FAIL(); }));
}

TEST(Walker, SizeOfSingleThingsAndMissingOnes) {
    const QString root = Sandbox::scratch("single");
    Files::writeSparse(root + "/sparse", 100 * MiB, 8192);
    Files::touch(root + "/sparse", 1'650'000'000);
    const WalkResult sparse = Walker::size(root + "/sparse", true);
    EXPECT_EQ(sparse.bytes, Files::allocated(root + "/sparse"));
    EXPECT_LT(sparse.bytes, MiB);  // only the allocated blocks count, not the length
    EXPECT_EQ(sparse.files, 1);
    EXPECT_EQ(sparse.newest->toSecsSinceEpoch(), 1'650'000'000);

    Files::makeDirs(root + "/tree");
    Files::writeSparse(root + "/tree/hole", 50 * MiB, 4096);
    EXPECT_EQ(measure(root + "/tree").bytes, Files::diskUsage(root + "/tree"));

    // A folder's own blocks count: 3,000 empty files take what du says, not nothing.
    Files::makeDirs(root + "/empty");
    for (int i = 0; i < 3000; ++i) Files::write(root + "/empty/" + QString::number(i) + "-a-longer-name", 0);
    QProcess du;
    du.start("du", {"-sB1", root + "/empty"});
    ASSERT_TRUE(du.waitForFinished());
    const qint64 duBytes = du.readAllStandardOutput().split('\t').value(0).toLongLong();
    EXPECT_GT(duBytes, 4096);
    EXPECT_EQ(measure(root + "/empty").bytes, duBytes);

    EXPECT_EQ(Walker::size(root + "/nothing", true), WalkResult{});
    EXPECT_EQ(Walker::size(root + "/nothing/deeper", false), WalkResult{});
    EXPECT_EQ(Walker::device(root + "/nothing"), std::nullopt);
    ::mkfifo(Files::bytes(root + "/pipe").constData(), 0644);
    EXPECT_EQ(Walker::size(root + "/pipe", true), WalkResult{});
}

TEST(Walker, OddNamesAreMeasuredAndKeepTheirBytes) {
    const QString root = Sandbox::scratch("names");
    const QList<QByteArray> names{"with space", "new\nline", QByteArray(255, 'n'), QByteArray("caf\xe9-latin1"),
                                  QByteArray("\xff\xfe\x80"), "tab\there", "emoji-\xf0\x9f\x98\x80", "-dash", "*"};
    for (const QByteArray& name : names) {
        const QString folder = root + "/" + Paths::fromBytes(name);
        Files::makeDirs(folder);
        Files::write(folder + "/" + Paths::fromBytes(name), 5000);
    }
    const WalkResult r = measure(root);
    EXPECT_EQ(r.bytes, Files::diskUsage(root));
    EXPECT_EQ(r.files, names.size());
    // Their names come back byte for byte: the paths round trip, and the tree and du tests.
}

TEST(Walker, ATreeThousandsOfFoldersDeepIsMeasuredWhole) {
    const QString root = Sandbox::scratch("deep");
    const qint64 expected = Files::makeDeepChain(root, 3000, 100);  // ~6,000 bytes of path: beyond PATH_MAX
    const WalkResult r = measure(root);
    EXPECT_EQ(r.bytes, expected);
    EXPECT_EQ(r.files, 3000);
    EXPECT_EQ(r.denied, 0);
}

TEST(Walker, UnreadableFoldersCountAsDeniedAndTheWalkGoesOn) {
    if (!AsUser::canDrop()) GTEST_SKIP() << "needs root to switch to an unprivileged user";
    const QString root = Sandbox::scratch("denied");
    Files::makeDirs(root + "/open/inner");
    Files::makeDirs(root + "/locked/inside");
    Files::write(root + "/open/inner/a", 20000);
    Files::write(root + "/locked/inside/secret", MiB);
    Files::write(root + "/top", 4096);
    ::chmod(Files::bytes(root + "/locked").constData(), 0700);
    // The locked folder cannot be opened: its own blocks are not seen either.
    const qint64 visible = Files::diskUsage(root) - Files::diskUsage(root + "/locked");

    const auto result = AsUser::run([&] {
        const WalkResult p = Walker::size(root, true);
        const WalkResult s = Walker::size(root, false);
        const WalkResult inside = Walker::size(root + "/locked/inside/secret", true);
        return QByteArray::number(p.bytes) + " " + QByteArray::number(p.denied) + " " + QByteArray::number(p.files) +
               " " + QByteArray::number(s.bytes) + " " + QByteArray::number(s.denied) + " " +
               QByteArray::number(inside.denied);
    });
    ASSERT_TRUE(result) << "the unprivileged child failed";
    EXPECT_EQ(*result, QByteArray::number(visible) + " 1 2 " + QByteArray::number(visible) + " 1 1");
}

TEST(Walker, AnotherVolumeInsideTheTreeIsNotEntered) {
    const QString root = Sandbox::scratch("mounts");
    Files::write(root + "/own", 8192);
    TestMount mounted = TestMount::tmpfs(root + "/mnt", 16);
    if (!mounted.ok()) GTEST_SKIP() << mounted.why().toStdString();
    Files::write(root + "/mnt/elsewhere", 4 * MiB);
    Files::makeDirs(root + "/mnt/sub");

    EXPECT_EQ(measure(root).bytes, Files::allocated(root) + Files::allocated(root + "/own"));
    int folders = 0;
    Walker::list(root, Walker::device(root), [&](const Walker::Entry& e) { folders += e.isDir; });
    EXPECT_EQ(folders, 0);  // the mount point is left out when a device is given
    Walker::list(root, std::nullopt, [&](const Walker::Entry& e) { folders += e.isDir; });
    EXPECT_EQ(folders, 1);
    EXPECT_EQ(Walker::size(root + "/mnt", true).bytes, Files::allocated(root + "/mnt/elsewhere"));

    // A regular file from another device is still counted.
    Files::write(root + "/bound", 0);
    TestMount file = TestMount::bind(root + "/mnt/elsewhere", root + "/bound");
    if (!file.ok()) GTEST_SKIP() << file.why().toStdString();
    EXPECT_EQ(measure(root).bytes,
              Files::allocated(root) + Files::allocated(root + "/own") + Files::allocated(root + "/mnt/elsewhere"));
}

}  // namespace
