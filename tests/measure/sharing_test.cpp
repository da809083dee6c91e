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

// A file system made in a sparse image file and loop-mounted at `at`; empty why() when mounted.
struct LoopMount {
    QString at;
    QString why;
    LoopMount(const QString& type, const QString& folder) : at(folder + "/mnt") {
        const QString image = folder + "/image";
        Files::makeDirs(at);
        QFile f(image);
        if (!f.open(QIODevice::WriteOnly) || !f.resize(512 * MiB)) why = "no room for the image";
        const QStringList mkfs = type == "btrfs" ? QStringList{"-q", image} : QStringList{"-q", "-m", "reflink=1", image};
        if (why.isEmpty() && !run("mkfs." + type, mkfs)) why = "mkfs." + type + " is missing or failed";
        if (why.isEmpty() && !run("mount", {"-o", "loop", image, at})) why = "loop mounting " + type + " is not allowed here";
    }
    ~LoopMount() {
        if (why.isEmpty()) ::umount2(Files::bytes(at).constData(), MNT_DETACH);
    }
};

class Sharing : public testing::TestWithParam<QString> {};

// 40 MiB in `one`, a full and a partial reflinked copy beside it, another full copy in `two`:
// the disk holds 44 MiB of file data, and that is what is charged, however it is walked.
TEST_P(Sharing, ReflinkedCopiesAreChargedOnce) {
    const LoopMount fs(GetParam(), Sandbox::scratch(GetParam()));
    if (!fs.why.isEmpty()) GTEST_SKIP() << fs.why.toStdString();
    const QString one = fs.at + "/one", two = fs.at + "/two";
    Files::makeDirs(one);
    Files::makeDirs(two);
    Files::write(one + "/a", 40 * MiB, 'a');
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", one + "/full"}));
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", one + "/partial"}));
    ASSERT_TRUE(run("dd", {"if=/dev/urandom", "of=" + one + "/partial", "bs=1M", "count=4", "seek=8", "conv=notrunc,fsync"}));
    ASSERT_TRUE(run("cp", {"--reflink=always", one + "/a", two + "/copy"}));
    Files::hardlink(one + "/full", two + "/link");
    ASSERT_TRUE(run("sync", {}));
    const qint64 folders = Files::allocated(fs.at) + Files::allocated(one) + Files::allocated(two);

    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(Walker::size(fs.at, true).bytes, 44 * MiB + folders) << "parallel walk " << i;
        EXPECT_EQ(Walker::tree(fs.at, {}).bytes, 44 * MiB + folders) << "tree " << i;
    }
    EXPECT_EQ(Walker::size(fs.at, false).bytes, 44 * MiB + folders);
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
