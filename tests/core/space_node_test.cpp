#include <gtest/gtest.h>

#include "support/printers.h"

#include "core/space_node.h"
#include "support/lists.h"

namespace {

SpaceNode node(const QString& path, qint64 bytes, QList<SpaceNode> kids = {}) {
    return SpaceNode{path.section('/', -1), path, bytes, true, "", std::nullopt, std::move(kids)};
}

// /h (100) ─ Lib (10), Library (60) ─ Caches (50) ─ x (30), y (20); Docs (30)
SpaceNode sample() {
    return node("/h", 100,
                {node("/h/Library", 60, {node("/h/Library/Caches", 50, {node("/h/Library/Caches/x", 30),
                                                                         node("/h/Library/Caches/y", 20)})}),
                 node("/h/Docs", 30), node("/h/Lib", 10)});
}

QStringList kidNames(const SpaceNode& n) { return fieldOf(n.kids, &SpaceNode::name); }

TEST(SpaceNode, FindFollowsComponentsNotTextPrefixes) {
    const SpaceNode root = sample();
    ASSERT_NE(root.find("/h/Library/Caches/y"), nullptr);
    EXPECT_EQ(root.find("/h/Library/Caches/y")->bytes, 20);
    EXPECT_EQ(root.find("/h"), &root);
    EXPECT_EQ(root.find("/h/Lib/rary"), nullptr);
    EXPECT_EQ(root.find("/h/Librar"), nullptr);
    EXPECT_EQ(root.find("/h/Library/Caches/z"), nullptr);
    EXPECT_EQ(root.find("/hh"), nullptr);
    EXPECT_EQ(root.find("/"), nullptr);

    SpaceNode lib = node("/h", 0, {node("/h/Lib", 1)});
    EXPECT_EQ(lib.find("/h/Library"), nullptr);  // a folder Lib is not a prefix of Library
}

TEST(SpaceNode, PruneTakesTheBytesOffEveryFolderAbove) {
    SpaceNode root = sample();
    root.prune("/h/Library/Caches/x", 30);
    EXPECT_EQ(root.bytes, 70);
    EXPECT_EQ(root.find("/h/Library")->bytes, 30);
    EXPECT_EQ(root.find("/h/Library/Caches")->bytes, 20);
    EXPECT_EQ(root.find("/h/Library/Caches/x"), nullptr);
    EXPECT_EQ(kidNames(root), QStringList({"Library", "Docs", "Lib"}));  // 30, 30, 10: equal sizes keep order

    root.prune("/h/Library/Caches/y", 25);  // more than the folder holds
    EXPECT_EQ(root.find("/h/Library/Caches")->bytes, 0);
    EXPECT_EQ(kidNames(root), QStringList({"Docs", "Lib", "Library"}));  // re-sorted

    const SpaceNode before = root;
    root.prune("/elsewhere/x", 5);
    root.prune("/h", 5);  // not strictly below the root
    EXPECT_EQ(root, before);

    root.prune("/h/Docs/not-in-tree", 10);  // unknown inside a known folder: the folder still shrinks
    EXPECT_EQ(root.find("/h/Docs")->bytes, 20);
    EXPECT_EQ(root.bytes, before.bytes - 10);
    root.prune("/h/Lib", 1000);
    EXPECT_EQ(root.bytes, 0);
}

TEST(SpaceNode, AdjustAddsOnTheWayAndInsertsWhatIsMissing) {
    SpaceNode root = sample();
    root.adjust("/h/Lib", 45, false);
    EXPECT_EQ(root.bytes, 145);
    EXPECT_EQ(root.find("/h/Lib")->bytes, 55);
    EXPECT_EQ(kidNames(root), QStringList({"Library", "Lib", "Docs"}));

    root.adjust("/h/Docs/new/file.txt", 7, false);  // not held and not inserted
    EXPECT_EQ(root.find("/h/Docs")->bytes, 37);
    EXPECT_EQ(root.find("/h/Docs/new"), nullptr);

    root.adjust("/h/Docs/new/deeper/file.txt", 40, true);
    const SpaceNode* made = root.find("/h/Docs/new/deeper/file.txt");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->bytes, 40);
    EXPECT_FALSE(made->isDir);
    EXPECT_TRUE(root.find("/h/Docs/new")->isDir);
    EXPECT_EQ(root.find("/h/Docs/new")->bytes, 40);
    EXPECT_EQ(root.find("/h/Docs")->bytes, 77);
    EXPECT_EQ(root.bytes, 192);

    root.adjust("/h/Docs", -1000, false);  // shrinking never goes below zero
    EXPECT_EQ(root.find("/h/Docs")->bytes, 0);
    root.adjust("/other", 5, true);
    EXPECT_EQ(root.find("/other"), nullptr);
}

TEST(SpaceNode, SetKidsSortsAndCreatesTheWayDown) {
    SpaceNode root = sample();
    root.setKids("/h/Docs", {node("/h/Docs/a", 5), node("/h/Docs/b", 9), node("/h/Docs/c", 5)}, false);
    EXPECT_EQ(kidNames(*root.find("/h/Docs")), QStringList({"b", "a", "c"}));
    EXPECT_EQ(root.find("/h/Docs")->bytes, 30);  // a folder with a size keeps it

    const SpaceNode before = root;
    root.setKids("/h/Docs/missing/deep", {node("/h/Docs/missing/deep/z", 4)}, false);
    EXPECT_EQ(root, before);

    root.setKids("/h/Docs/missing/deep", {node("/h/Docs/missing/deep/z", 4), node("/h/Docs/missing/deep/w", 6)},
                 true);
    const SpaceNode* deep = root.find("/h/Docs/missing/deep");
    ASSERT_NE(deep, nullptr);
    EXPECT_EQ(deep->bytes, 10);  // made without a size: takes the sum
    EXPECT_EQ(kidNames(*deep), QStringList({"w", "z"}));
    EXPECT_EQ(root.find("/h/Docs/missing")->bytes, 0);
    EXPECT_TRUE(root.find("/h/Docs/missing")->isDir);
    EXPECT_EQ(root.bytes, 100);  // the folders above already counted these bytes

    root.setKids("/h/Lib", {}, true);
    EXPECT_TRUE(root.find("/h/Lib")->kids.isEmpty());
    EXPECT_EQ(root.find("/h/Lib")->bytes, 10);
}

}  // namespace
