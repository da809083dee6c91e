#include <gtest/gtest.h>

#include <sys/mount.h>

#include <QFile>
#include <QProcess>

#include "measure/shared_walk.h"
#include "measure/walker.h"
#include "support/files.h"
#include "support/mount.h"
#include "support/sandbox.h"

namespace {

const qint64 MiB = 1024 * 1024;

bool run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    return p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

// A fresh file system of the test's type, loop-mounted at `at`.
TestMount loopAt(const QString& type, const QString& at) {
    Files::makeDirs(at);
    return TestMount::loop(type, Sandbox::scratch(type) + "/image", at);
}

class Sharing : public testing::TestWithParam<QString> {};

// 40 MiB in `one`, a full and a partial reflinked copy beside it, another full copy in `two` and
// in `three`, with 8 MiB and one block of its own copied once: the disk holds 52 MiB and a block of file data, and that is
// what is charged, however it is walked.
TEST_P(Sharing, ReflinkedCopiesAreChargedOnce) {
    const QString at = Sandbox::scratch(GetParam()) + "/mnt";
    const TestMount fs = loopAt(GetParam(), at);
    if (!fs.ok()) GTEST_SKIP() << fs.why().toStdString();
    const QString one = at + "/one", two = at + "/two", three = at + "/three";
    Files::makeDirs(one);
    Files::makeDirs(two);
    Files::write(one + "/a", 40 * MiB, 'a');
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", one + "/full"}));
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", one + "/partial"}));
    ASSERT_TRUE(run("dd", {"if=/dev/urandom", "of=" + one + "/partial", "bs=1M", "count=4", "seek=8", "conv=notrunc,fsync"}));
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", two + "/copy"}));
    Files::hardlink(one + "/full", two + "/link");
    // `three` holds a copy of `a` and two copies of a file of its own, and of a one-block file.
    Files::makeDirs(three);
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", three + "/a"}));
    Files::write(three + "/x", 8 * MiB, 'x');
    ASSERT_TRUE(run("cp", {"--reflink=always", three + "/x", three + "/y"}));
    Files::write(three + "/small", 3000, 's');
    ASSERT_TRUE(run("cp", {"--reflink=always", three + "/small", three + "/small2"}));
    ASSERT_TRUE(run("sync", {}));

    // What removing an item leaves because files elsewhere hold it too.
    EXPECT_EQ(Walker::heldElsewhere(three), 40 * MiB);
    EXPECT_EQ(Walker::heldElsewhere(three + "/x"), 8 * MiB);
    EXPECT_EQ(Walker::heldElsewhere(one + "/partial"), 36 * MiB);
    EXPECT_EQ(Walker::heldElsewhere(at), 0);

    const qint64 folders = Files::allocated(at) + Files::allocated(one) + Files::allocated(two) + Files::allocated(three);

    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(Walker::size(at, true).bytes, 52 * MiB + 4096 + folders) << "parallel walk " << i;
        EXPECT_EQ(Walker::tree(at, {}).bytes, 52 * MiB + 4096 + folders) << "tree " << i;
    }
    EXPECT_EQ(Walker::size(at, false).bytes, 52 * MiB + 4096 + folders);
    EXPECT_EQ(Walker::size(two, true).bytes, 40 * MiB + Files::allocated(two));  // a run of its own pays in full

    // Two roots of one walk: the blocks go to the root reached first.
    SharedWalk::Options o;
    o.threads = 1;
    const QList<WalkResult> each = SharedWalk({two, one}, std::move(o)).runEach();
    EXPECT_EQ(each[0].bytes, 40 * MiB + Files::allocated(two));
    EXPECT_EQ(each[1].bytes, 4 * MiB + Files::allocated(one));

    const auto info = Walker::cloneInfo(one + "/partial");
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->first, 4 * MiB);
    EXPECT_NE(info->second, 0u);
}

INSTANTIATE_TEST_SUITE_P(FileSystems, Sharing, testing::Values(QString("btrfs"), QString("xfs")),
                         [](const auto& p) { return p.param.toStdString(); });

// One file system seen through two bind mounts is charged once: as two roots of one walk, and as a
// bind mount inside the tree being walked (not entered, as any other mount).
TEST(Measuring, BindMountsOfOneFileSystemAreChargedOnce) {
    const QString root = Sandbox::scratch("binds");
    Files::makeDirs(root + "/data/sub");
    Files::write(root + "/data/sub/f", 2 * MiB);
    Files::makeDirs(root + "/view");
    const QString elsewhere = Sandbox::scratch("elsewhere");
    const TestMount inside = TestMount::bind(root + "/data", root + "/view");
    if (!inside.ok()) GTEST_SKIP() << inside.why().toStdString();
    const TestMount outside = TestMount::bind(root + "/data", elsewhere);
    ASSERT_TRUE(outside.ok());

    const qint64 data = Walker::size(root + "/data", true).bytes;
    EXPECT_EQ(data, Files::diskUsage(root + "/data"));
    // The view is not entered; the root's own blocks are the only ones beside the data's.
    EXPECT_EQ(Walker::size(root, true).bytes, Files::allocated(root) + data);
    EXPECT_EQ(Walker::tree(root, {}).bytes, Files::allocated(root) + data);
    // Overlapping roots: the folders met twice are paid once, like the files.
    const QList<WalkResult> each = SharedWalk({root + "/data", elsewhere, root + "/data/sub"}, {}).runEach();
    EXPECT_EQ(each[0].bytes + each[1].bytes + each[2].bytes, data);
}

}  // namespace
