#include <gtest/gtest.h>

#include <QMutex>
#include <atomic>

#include "measure/dir_node.h"
#include "measure/shared_walk.h"
#include "measure/walker.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

// `count` folders under root, spread over a few levels, each holding one 4 KiB file.
void makeManyFolders(const QString& root, int count) {
    for (int i = 0; i < count; ++i) {
        const QString folder = QStringLiteral("%1/%2/%3/%4").arg(root).arg(i % 7).arg(i % 31).arg(i);
        Files::makeDirs(folder);
        Files::writeText(folder + "/f", QByteArray(4096, 'x'));
    }
}

struct Recorded {
    QMutex lock;
    QMap<int, int> calls;
    QMap<int, WalkResult> totals;
};

SharedWalk::Options recording(Recorded& r) {
    SharedWalk::Options o;
    o.done = [&r](int root, const WalkResult& total) {
        QMutexLocker guard(&r.lock);
        r.calls[root] += 1;
        r.totals[root] = total;
    };
    return o;
}

TEST(SharedWalk, EachRootFinishesOnceWithItsOwnTotal) {
    const QString base = Sandbox::scratch("roots");
    Files::makeDirs(base + "/empty");
    Files::makeDirs(base + "/flat");
    Files::write(base + "/flat/a", 8192);
    makeManyFolders(base + "/wide", 300);
    Files::makeDeepChain(base + "/deep", 200, 10);
    const QStringList roots{base + "/empty", base + "/flat", base + "/wide", base + "/deep", base + "/missing"};

    Recorded r;
    const QList<WalkResult> totals = SharedWalk(roots, recording(r)).runEach();
    ASSERT_EQ(totals.size(), roots.size());
    for (int i = 0; i < roots.size(); ++i) {
        EXPECT_EQ(r.calls.value(i), 1) << i;
        EXPECT_EQ(r.totals.value(i), totals[i]) << i;
    }
    EXPECT_EQ(totals[0], (WalkResult{Files::allocated(base + "/empty"), 0, 0, {}}));  // the folder's own blocks
    EXPECT_EQ(totals[1].bytes, Files::diskUsage(base + "/flat"));
    EXPECT_EQ(totals[2].files, 300);
    EXPECT_EQ(totals[3].files, 200);
    EXPECT_EQ(totals[4].denied, 1);  // a root that cannot be opened still completes
    for (int i = 0; i < 4; ++i) EXPECT_EQ(totals[i].bytes, Walker::size(roots[i], false).bytes) << i;
}

TEST(SharedWalk, RepeatedWalksGiveTheSameTotals) {
    const QString base = Sandbox::scratch("repeat");
    makeManyFolders(base + "/one", 400);
    makeManyFolders(base + "/two", 250);
    Files::write(base + "/one/shared", 65536);
    Files::hardlink(base + "/one/shared", base + "/two/shared-too");  // charged to whichever root meets it
    const QStringList roots{base + "/one", base + "/two"};

    qint64 expectedSum = -1;
    QList<WalkResult> first;
    for (int run = 0; run < 12; ++run) {
        SharedWalk::Options o;
        o.threads = 1 + run % 8;
        WalkProgress progress;
        o.progress = &progress;
        const QList<WalkResult> totals = SharedWalk(roots, o).runEach();
        const qint64 sum = totals[0].bytes + totals[1].bytes;
        if (expectedSum < 0) expectedSum = sum;
        EXPECT_EQ(sum, expectedSum) << "run " << run;
        EXPECT_EQ(totals[0].files, 401);
        EXPECT_EQ(totals[1].files, 251);
        EXPECT_EQ(progress.files(), 652);
        EXPECT_EQ(progress.bytes(), sum);
    }
    EXPECT_EQ(expectedSum, Files::diskUsage(base) - Files::allocated(base));
}

TEST(SharedWalk, CancellingStopsEveryThreadWithinItsPollingWindow) {
    const QString base = Sandbox::scratch("cancel");
    const int folders = 6000;
    makeManyFolders(base, folders);
    for (int threads : {1, 2, 8}) {
        SharedWalk::Options o;
        o.threads = threads;
        std::atomic<int> polls{0};
        o.cancelled = [&] { return ++polls > 0; };  // the first look already says stop
        WalkProgress progress;
        o.progress = &progress;
        std::atomic<int> done{0};
        o.done = [&](int, const WalkResult&) { ++done; };
        SharedWalk({base}, o).runEach();
        // Each folder holds one file, so files counted are folders read: at most 128 per thread.
        EXPECT_LE(progress.files(), 128 * threads) << threads;
        EXPECT_GT(progress.files(), 0);
        EXPECT_EQ(done.load(), 0) << "a cancelled root never reports";
    }

    // Cancelling part-way: a root may still report, but only when it was read whole.
    const QStringList roots{base + "/0", base + "/1", base + "/2"};
    QList<WalkResult> whole;
    for (const QString& r : roots) whole.append(Walker::size(r, true));
    for (int stopAt : {1, 2, 4, 8}) {
        SharedWalk::Options o;
        o.threads = 2;
        std::atomic<int> polls{0};
        o.cancelled = [&] { return ++polls >= stopAt; };
        Recorded r;
        SharedWalk::Options recorded = recording(r);
        o.done = recorded.done;
        SharedWalk(roots, o).runEach();
        for (auto it = r.calls.begin(); it != r.calls.end(); ++it) {
            EXPECT_EQ(it.value(), 1);
            EXPECT_EQ(r.totals[it.key()], whole[it.key()]) << "root " << it.key() << " reported unfinished";
        }
        EXPECT_LT(r.calls.size(), 3) << "stopping at poll " << stopAt << " left nothing to stop";
    }
    EXPECT_EQ(DirNodes::held(), 0);
}

TEST(SharedWalk, ATightDescriptorLimitReopensFoldersByName) {
    const QString base = Sandbox::scratch("tight");
    makeManyFolders(base + "/wide", 500);
    const qint64 deepBytes = Files::makeDeepChain(base + "/deep", 600, 10);
    const WalkResult wide = Walker::size(base + "/wide", true);
    const WalkResult deep = Walker::size(base + "/deep", true);

    DirNodes::setHeldLimit(2);
    const QList<WalkResult> tight = SharedWalk({base + "/wide", base + "/deep"}, SharedWalk::Options{}).runEach();
    DirNodes::setHeldLimit(0);
    const QList<WalkResult> none = SharedWalk({base + "/wide", base + "/deep"}, SharedWalk::Options{}).runEach();
    DirNodes::setHeldLimit(-1);

    EXPECT_EQ(tight[0], wide);
    EXPECT_EQ(tight[1], deep);
    EXPECT_EQ(none[0], wide);
    EXPECT_EQ(none[1], deep);
    EXPECT_EQ(deep.bytes, deepBytes);
    EXPECT_EQ(DirNodes::held(), 0);
}

TEST(SharedWalk, AnEmptyStackStartsNone) {
    EXPECT_TRUE(SharedWalk(QStringList{}, SharedWalk::Options{}).runEach().isEmpty());
}

}  // namespace
