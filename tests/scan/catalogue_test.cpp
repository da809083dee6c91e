#include <gtest/gtest.h>

#include "scan/catalogue.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

// What the table must never do, whatever rows it gains: name an absolute path, remove a row that is
// only shown, share an id, or measure one folder twice.
TEST(Catalogue, RulesAreSafeAndEachFolderHasOneRow) {
    QSet<QString> ids;
    for (const Catalogue::Rule& r : Catalogue::rules()) {
        EXPECT_FALSE(ids.contains(r.id)) << r.id.toStdString();
        ids.insert(r.id);
        EXPECT_FALSE(r.paths.isEmpty()) << r.id.toStdString();
        for (const QString& p : r.paths) EXPECT_FALSE(p.startsWith('/')) << r.id.toStdString();
        EXPECT_EQ(r.removal, r.bucket == Bucket::keep ? Removal::none() : Removal::trash()) << r.id.toStdString();
        EXPECT_EQ(Catalogue::rule(r.id), r);
    }
    EXPECT_FALSE(Catalogue::rule("Caches"));  // ids are compared exactly
    EXPECT_FALSE(Catalogue::rule(""));

    const Catalogue::Rule caches = *Catalogue::rule("caches"), xdg = *Catalogue::rule("xdgcache");
    QSet<QString> namedInXdgCache;
    for (const Catalogue::Rule& r : Catalogue::rules())
        for (const QString& p : r.paths)
            if (p.startsWith(".cache/")) namedInXdgCache.insert(p.section('/', 1, 1));
    EXPECT_EQ(namedInXdgCache, Catalogue::ownXdgCacheRows());
    const auto rowsFor = [](const QString& path) {
        int rows = 0;
        for (const Catalogue::Rule& r : Catalogue::rules()) rows += r.paths.contains(path);
        return rows;
    };
    for (const QString& name : Catalogue::ownCacheRows()) {
        EXPECT_EQ(rowsFor("Library/Caches/" + name), 1) << name.toStdString();
        EXPECT_TRUE(caches.skips(name));
    }
    for (const QString& name : Catalogue::ownXdgCacheRows()) {
        EXPECT_EQ(rowsFor(".cache/" + name), 1) << name.toStdString();
        EXPECT_TRUE(xdg.skips(name)) << name.toStdString();
    }
}

// macOS's own caches, logins and app state inside cache folders stay where they are.
TEST(Catalogue, CacheRowsLeaveSystemCachesLoginsAndAppStateAlone) {
    const Catalogue::Rule caches = *Catalogue::rule("caches"), xdg = *Catalogue::rule("xdgcache");
    EXPECT_FALSE(caches.skips("com.applesauce"));  // no dot after com.apple
    EXPECT_FALSE(caches.skips("homebrew"));        // names are compared exactly
    for (const Catalogue::Rule& r : Catalogue::rules())
        if (r.id != "caches") EXPECT_FALSE(r.skips("com.apple.x") || r.skips("com.spotify.client")) << r.id.toStdString();

    for (const char* state : {"keepassxc", "obexd", "dconf", "gh-token", "copilot_TOKENS", "gcloud-credentials.json",
                              "secrets", "kwallet-password", "login.keyring"})
        EXPECT_TRUE(xdg.skips(state)) << state;
    for (const char* cache : {"fontconfig", "spotify", "keepassxc-old", "mozilla-x", "thumbnail"})
        EXPECT_FALSE(xdg.skips(cache)) << cache;

    const Catalogue::Rule hf = *Catalogue::rule("huggingface");
    EXPECT_TRUE(hf.skips("token") && hf.skips("stored_tokens"));
    EXPECT_FALSE(hf.skips("hub") || hf.skips("tokenizers"));
}

TEST(Catalogue, CachePathsFollowXdgCacheHomeOnlyWhenItIsAbsoluteAndBelowTheHome) {
    const LinuxFixtures::ScopedEnv restore("XDG_CACHE_HOME", qgetenv("XDG_CACHE_HOME"));
    EXPECT_EQ(Catalogue::at(".cache/yarn"), Sandbox::home() + "/.cache/yarn");
    qputenv("XDG_CACHE_HOME", "/var/cache/someone//");
    EXPECT_EQ(Catalogue::at(".cache/yarn"), "/var/cache/someone/yarn");
    EXPECT_EQ(Catalogue::at(".cache"), "/var/cache/someone");
    EXPECT_EQ(Catalogue::at(".cachet/x"), Sandbox::home() + "/.cachet/x");  // only the whole component
    EXPECT_EQ(Catalogue::at("Library/Caches/Yarn"), Sandbox::home() + "/Library/Caches/Yarn");
    // The home itself, or a folder above it, would make the whole home a cache.
    for (const QString& above : {QString(), Sandbox::home(), Sandbox::home() + "/", Sandbox::root(), QString("/")}) {
        qputenv("XDG_CACHE_HOME", above.toUtf8());
        EXPECT_EQ(Catalogue::cacheFolder(), Sandbox::home() + "/.cache") << above.toStdString();
    }
}
