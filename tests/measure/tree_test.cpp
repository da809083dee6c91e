#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QMutex>

#include "core/paths.h"
#include "core/record_json.h"
#include "measure/dir_node.h"
#include "measure/walker.h"
#include "support/as_user.h"
#include "support/files.h"
#include "support/lists.h"
#include "support/sandbox.h"

namespace {

// root
// ├── big/        a/ (b/ (c/ (f 64K)), g 32K)
// ├── small/      x 8K
// ├── empty/
// ├── file 16K
// └── tiny 4K
QString makeTree() {
    const QString root = Sandbox::scratch("tree");
    Files::makeDirs(root + "/big/a/b/c");
    Files::makeDirs(root + "/small");
    Files::makeDirs(root + "/empty");
    Files::write(root + "/big/a/b/c/f", 65536);
    Files::write(root + "/big/a/g", 32768);
    Files::write(root + "/small/x", 8192);
    Files::write(root + "/file", 16384);
    Files::write(root + "/tiny", 4096);
    return root;
}

QStringList names(const QList<SpaceNode>& nodes) { return fieldOf(nodes, &SpaceNode::name); }

int count(const SpaceNode& n) {
    int c = 1;
    for (const SpaceNode& k : n.kids) c += count(k);
    return c;
}

TEST(Tree, ExactLevelsAboveAndSummedFoldersBelow) {
    const QString root = makeTree();
    const qint64 total = Walker::size(root, true).bytes;
    EXPECT_EQ(total, Files::diskUsage(root));

    QStringList frontier;
    QMutex lock;
    QMap<int, WalkResult> finished;
    Walker::TreeOptions o;
    o.depth = 2;
    o.minFile = 10000;
    o.roots = [&](const QStringList& paths) { frontier = paths; };
    o.rootDone = [&](int i, const WalkResult& r) {
        QMutexLocker guard(&lock);
        EXPECT_FALSE(finished.contains(i));
        finished[i] = r;
    };
    WalkProgress progress;
    o.progress = &progress;
    const SpaceNode tree = Walker::tree(root, o);

    EXPECT_EQ(tree.bytes, total);
    EXPECT_EQ(progress.files(), 5);
    EXPECT_EQ(progress.bytes(), total);
    EXPECT_EQ(names(tree.kids), QStringList({"big", "file", "small", "empty"}));  // tiny folds into root
    EXPECT_EQ(tree.kids[0].bytes, Files::diskUsage(root + "/big"));
    EXPECT_EQ(names(tree.kids[0].kids), QStringList({"a"}));
    EXPECT_TRUE(tree.kids[0].kids[0].kids.isEmpty());  // a is at depth 2: summed, not listed
    EXPECT_EQ(names(tree.kids[2].kids), QStringList());  // x is below minFile: folded into small
    EXPECT_EQ(tree.kids[2].bytes, Files::diskUsage(root + "/small"));

    // The frontier: every folder at depth 2, each finished once with the size its node shows.
    EXPECT_EQ(frontier, QStringList({root + "/big/a"}));
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0].bytes, tree.kids[0].kids[0].bytes);
}

TEST(Tree, DepthZeroAndDepthBeyondTheTree) {
    const QString root = makeTree();
    QStringList frontier{"unset"};
    Walker::TreeOptions shallow;
    shallow.depth = 0;
    shallow.roots = [&](const QStringList& p) { frontier = p; };
    const SpaceNode top = Walker::tree(root, shallow);
    EXPECT_EQ(frontier.size(), 3);  // big, small, empty
    for (const SpaceNode& k : top.kids) EXPECT_TRUE(k.kids.isEmpty());
    EXPECT_EQ(top.bytes, Walker::size(root, true).bytes);

    Walker::TreeOptions deep;
    deep.depth = 50;
    deep.roots = [&](const QStringList& p) { frontier = p; };
    const SpaceNode all = Walker::tree(root, deep);
    EXPECT_TRUE(frontier.isEmpty());
    EXPECT_EQ(all.bytes, top.bytes);
    EXPECT_EQ(count(all), 12);  // the root, its 5 entries, a, b, g, c, f and x: every one has a node
}

TEST(Tree, MinFileIsInclusiveAndKeepFilesOverridesIt) {
    const QString root = makeTree();
    const qint64 file = Files::allocated(root + "/file");
    Walker::TreeOptions o;
    o.depth = 1;
    o.minFile = file;
    EXPECT_TRUE(names(Walker::tree(root, o).kids).contains("file"));
    o.minFile = file + 1;
    EXPECT_FALSE(names(Walker::tree(root, o).kids).contains("file"));
    o.keepFiles = {root + "/file", root + "/tiny"};
    const SpaceNode kept = Walker::tree(root, o);
    EXPECT_TRUE(names(kept.kids).contains("file"));
    EXPECT_TRUE(names(kept.kids).contains("tiny"));
    EXPECT_EQ(kept.bytes, Walker::size(root, true).bytes);
}

TEST(Tree, AnUnreadableFolderMarksEveryFolderAboveIt) {
    if (!AsUser::canDrop()) GTEST_SKIP() << "needs root to switch to an unprivileged user";
    const QString root = makeTree();
    Files::makeDirs(root + "/small/locked/deeper");
    Files::write(root + "/small/locked/deeper/secret", 65536);
    ::chmod(Files::bytes(root + "/small/locked").constData(), 0700);

    for (int depth : {1, 2, 4}) {
        const auto json = AsUser::run([&] {
            Walker::TreeOptions o;
            o.depth = depth;
            return encodeJson(Walker::tree(root, o)).toText();
        });
        ASSERT_TRUE(json);
        const SpaceNode tree = decodeJson<SpaceNode>(*parseJson(*json)).value();
        EXPECT_EQ(tree.note, Walker::partlyLocked) << depth;
        EXPECT_EQ(tree.find(root + "/small")->note, Walker::partlyLocked) << depth;
        EXPECT_EQ(tree.find(root + "/big")->note, "") << depth;
        if (depth >= 2) {
            EXPECT_EQ(tree.find(root + "/small/locked")->note, Walker::partlyLocked);
        }
        EXPECT_EQ(tree.bytes, Files::diskUsage(root) - Files::diskUsage(root + "/small/locked"));
    }
}

TEST(Tree, ChildrenSizesOneFolderOnDemand) {
    const QString root = makeTree();
    const QList<SpaceNode> kids = Walker::children(root);
    EXPECT_EQ(names(kids), QStringList({"big", "file", "small", "tiny", "empty"}));
    for (const SpaceNode& k : kids) {
        EXPECT_TRUE(k.kids.isEmpty());
        EXPECT_EQ(k.bytes, Walker::size(k.path, true).bytes) << k.name.toStdString();
        EXPECT_EQ(k.path, root + "/" + k.name);
    }
    EXPECT_TRUE(kids[0].isDir);
    EXPECT_FALSE(kids[1].isDir);
    EXPECT_EQ(names(Walker::children(root, {}, [](const QString& n) { return n.startsWith("s") || n == "big"; })),
              QStringList({"file", "tiny", "empty"}));
    EXPECT_TRUE(Walker::children(root + "/missing").isEmpty());
    EXPECT_TRUE(Walker::children(root + "/file").isEmpty());
}

TEST(Tree, DeepAndOddlyNamedTreesAndCancellation) {
    const QString root = Sandbox::scratch("deeptree");
    const QString odd = root + "/" + Paths::fromBytes(QByteArray("odd \xff\n name"));
    Files::makeDirs(odd + "/inner");
    Files::write(odd + "/inner/file", 12288);
    const qint64 chain = Files::makeDeepChain(root + "/chain", 2500, 100);
    Walker::TreeOptions o;
    o.depth = 4;
    const SpaceNode tree = Walker::tree(root, o);
    EXPECT_EQ(tree.bytes, Files::allocated(root) + chain + Files::diskUsage(odd));
    ASSERT_NE(tree.find(odd + "/inner/file"), nullptr);
    EXPECT_EQ(Paths::toBytes(tree.find(odd)->name), QByteArray("odd \xff\n name"));

    o.cancelled = [] { return true; };
    o.roots = [](const QStringList&) { ADD_FAILURE() << "a cancelled tree walks no frontier"; };
    for (int i = 0; i < 130; ++i) Files::makeDirs(QStringLiteral("%1/wide/%2").arg(root).arg(i));
    o.depth = 3;
    Walker::tree(root, o);
    EXPECT_EQ(DirNodes::held(), 0);
}

}  // namespace

// Which items a walk's record of sharing folders sends to be asked: those holding such a folder,
// those inside a folder walked whole, and the files of a folder whose own files share; by path
// components, never by a text prefix.
TEST(Tree, ItemsThatMayHoldSharingFiles) {
    const QHash<QString, bool> sharing{{"/h/a", false}, {"/h/w", true}};
    for (const char* yes : {"/h", "/h/a", "/h/a/f", "/h/w", "/h/w/deep/x"})  // "/h/a/f" may be a folder: asked too
        EXPECT_TRUE(Walker::mayHoldSharing(sharing, yes)) << yes;
    for (const char* no : {"/h/a/sub/f", "/h/ap", "/h/a2/f", "/h/b", "/other"})
        EXPECT_FALSE(Walker::mayHoldSharing(sharing, no)) << no;
}
