#include <gtest/gtest.h>

#include "scan/catalogue.h"
#include "support/sandbox.h"

TEST(Catalogue, RulesInOrderWithUniqueIdsAndRemovals) {
    QStringList ids;
    for (const Catalogue::Rule& r : Catalogue::rules()) {
        ids.append(r.id);
        EXPECT_FALSE(r.title.isEmpty());
        EXPECT_FALSE(r.explain.isEmpty());
        EXPECT_FALSE(r.comesBack.isEmpty());
        EXPECT_FALSE(r.paths.isEmpty()) << r.id.toStdString();
        for (const QString& p : r.paths) EXPECT_FALSE(p.startsWith('/')) << r.id.toStdString();
        // Only shown rows are never removed; nothing in the table runs a command.
        EXPECT_EQ(r.removal, r.bucket == Bucket::keep ? Removal::none() : Removal::trash()) << r.id.toStdString();
    }
    EXPECT_EQ(ids, QStringList({"caches", "logs", "derived", "simcaches", "homebrew", "yarn", "npm", "pip", "swiftpm",
                                "cocoapods", "gradle", "gobuild", "jetbrains", "devicesupport", "archives", "playwright",
                                "pnpm", "cargo", "huggingface", "backups", "ollama", "docker"}));
    EXPECT_EQ(Catalogue::rules()[13].paths.size(), 4);
    EXPECT_EQ(Catalogue::rules()[0].explain,
              "Apps keep copies of things they downloaded or worked out, so they open faster. Apps rebuild these when "
              "they need them; the first launch after clearing can be a little slower. macOS's own caches are left "
              "alone.");
}

TEST(Catalogue, RuleLookupIsExactAndCaseSensitive) {
    ASSERT_TRUE(Catalogue::rule("caches"));
    EXPECT_EQ(*Catalogue::rule("caches"), Catalogue::rules().first());
    EXPECT_EQ(Catalogue::rule("docker")->bucket, Bucket::keep);
    EXPECT_FALSE(Catalogue::rule("Caches"));
    EXPECT_FALSE(Catalogue::rule("installers"));  // an extra row, not a rule
    EXPECT_FALSE(Catalogue::rule(""));
}

TEST(Catalogue, OnlyCachesSkipsOwnRowsAndMacOSCaches) {
    const Catalogue::Rule caches = *Catalogue::rule("caches");
    EXPECT_TRUE(caches.skips("Homebrew"));
    EXPECT_TRUE(caches.skips("com.apple.Safari"));
    EXPECT_FALSE(caches.skips("com.applesauce"));  // no dot after com.apple
    EXPECT_FALSE(caches.skips("com.apple"));
    EXPECT_FALSE(caches.skips("homebrew"));  // names are compared exactly
    EXPECT_FALSE(caches.skips("com.spotify.client"));
    for (const Catalogue::Rule& r : Catalogue::rules()) {
        if (r.id != "caches") EXPECT_FALSE(r.skips("Homebrew") || r.skips("com.apple.x")) << r.id.toStdString();
    }

    // Every folder with a row of its own inside Library/Caches is measured by exactly that row.
    for (const QString& name : Catalogue::ownCacheRows()) {
        int rows = 0;
        for (const Catalogue::Rule& r : Catalogue::rules())
            rows += r.paths.contains("Library/Caches/" + name);
        EXPECT_EQ(rows, 1) << name.toStdString();
        EXPECT_TRUE(caches.skips(name));
    }
    EXPECT_EQ(Catalogue::ownCacheRows().size(), 9);
}

TEST(Catalogue, WordListsAndSharedTexts) {
    EXPECT_EQ(Catalogue::codeRoots().size(), 13);
    EXPECT_EQ(Catalogue::codeRoots().first(), "devbox");
    EXPECT_EQ(Catalogue::codeRoots().last(), "Sites");
    EXPECT_EQ(Catalogue::installerExtensions(), QSet<QString>({"dmg", "pkg", "mpkg", "xip", "iso"}));
    EXPECT_EQ(Catalogue::unfinishedExtensions(),
              QSet<QString>({"crdownload", "part", "download", "opdownload", "partial"}));
    QStringList onInstall;
    for (const Catalogue::Rule& r : Catalogue::rules())
        if (r.comesBack == ComesBack::onInstall) onInstall.append(r.id);
    EXPECT_EQ(onInstall, QStringList({"yarn", "npm", "pip", "cocoapods", "pnpm"}));
    EXPECT_EQ(Catalogue::rule("archives")->comesBack, "Gone for good");
}
