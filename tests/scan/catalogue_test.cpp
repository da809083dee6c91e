#include <gtest/gtest.h>

#include <QMap>

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
                                "pnpm", "cargo", "huggingface", "backups", "ollama", "docker",
                                // Linux homes' own data follows the 22.
                                "xdgcache", "thumbnails", "browsercaches", "ccache", "sccache", "shadercaches", "maven",
                                "rustup", "bazel", "gomodules", "containers", "rootlessdocker"}));
    QSet<QString> unique(ids.begin(), ids.end());
    EXPECT_EQ(unique.size(), ids.size());
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
        if (r.id != "caches") {
            EXPECT_FALSE(r.skips("com.apple.x") || r.skips("com.spotify.client")) << r.id.toStdString();
        }
        if (r.id != "caches" && r.id != "xdgcache") {
            EXPECT_FALSE(r.skips("Homebrew")) << r.id.toStdString();
        }
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

TEST(Catalogue, TheMacRulesKeepTheirPlacesAndGainTheLinuxOnesOfTheSameData) {
    const QMap<QString, QStringList> paths{
        {"homebrew", {"Library/Caches/Homebrew", ".cache/Homebrew"}},
        {"yarn", {"Library/Caches/Yarn", ".cache/yarn"}},
        {"gradle", {".gradle/caches", ".gradle/wrapper/dists"}},
        {"gobuild", {"Library/Caches/go-build", ".cache/go-build"}},
        {"jetbrains", {"Library/Caches/JetBrains", ".cache/JetBrains"}},
        {"playwright", {"Library/Caches/ms-playwright", ".cache/puppeteer", ".cache/ms-playwright"}},
        {"pnpm", {"Library/pnpm/store", "Library/Caches/pnpm", ".local/share/pnpm/store", ".cache/pnpm"}},
        {"cargo", {".cargo/registry", ".cargo/git"}},
    };
    for (auto it = paths.begin(); it != paths.end(); ++it) EXPECT_EQ(Catalogue::rule(it.key())->paths, it.value());
    // Kept rows name the tool that manages them and are never removed by Quarle.
    for (const char* id : {"bazel", "gomodules", "containers", "rootlessdocker"}) {
        EXPECT_EQ(Catalogue::rule(id)->bucket, Bucket::keep) << id;
        EXPECT_EQ(Catalogue::rule(id)->removal, Removal::none()) << id;
    }
    EXPECT_TRUE(Catalogue::rule("bazel")->explain.contains("bazel clean --expunge"));
    EXPECT_TRUE(Catalogue::rule("gomodules")->explain.contains("go clean -modcache"));
    EXPECT_TRUE(Catalogue::rule("containers")->explain.contains("podman system prune"));
    EXPECT_EQ(Catalogue::rule("rootlessdocker")->comesBack, ComesBack::inDocker);
    EXPECT_TRUE(Catalogue::rule("rustup")->listParts);
    EXPECT_TRUE(Catalogue::rule("xdgcache")->listParts);
}

TEST(Catalogue, XdgCacheLeavesOutOwnRowsAppStateAndLogins) {
    const Catalogue::Rule xdg = *Catalogue::rule("xdgcache");
    // Every folder of .cache that a rule names is measured by exactly that rule, and xdgcache skips it.
    QSet<QString> named;
    for (const Catalogue::Rule& r : Catalogue::rules())
        for (const QString& p : r.paths)
            if (p.startsWith(".cache/")) named.insert(p.section('/', 1, 1));
    EXPECT_EQ(named, Catalogue::ownXdgCacheRows());
    for (const QString& name : Catalogue::ownXdgCacheRows()) {
        int rows = 0;
        for (const Catalogue::Rule& r : Catalogue::rules()) rows += r.paths.contains(".cache/" + name);
        EXPECT_EQ(rows, 1) << name.toStdString();
        EXPECT_TRUE(xdg.skips(name)) << name.toStdString();
    }
    for (const char* state : {"keepassxc", "obexd", "dconf", "gh-token", "copilot_TOKENS", "gcloud-credentials.json",
                              "secrets", "kwallet-password", "login.keyring"})
        EXPECT_TRUE(xdg.skips(state)) << state;
    for (const char* cache : {"fontconfig", "tracker3", "spotify", "Pip", "keepassxc-old", "mozilla-x", "thumbnail"})
        EXPECT_FALSE(xdg.skips(cache)) << cache;

    // The Hugging Face login token, and nothing else, stays.
    const Catalogue::Rule hf = *Catalogue::rule("huggingface");
    EXPECT_TRUE(hf.skips("token"));
    EXPECT_TRUE(hf.skips("stored_tokens"));
    EXPECT_FALSE(hf.skips("hub"));
    EXPECT_FALSE(hf.skips("tokenizers"));
}

TEST(Catalogue, CachePathsFollowXdgCacheHomeWhenItIsAbsolute) {
    const QByteArray saved = qgetenv("XDG_CACHE_HOME");
    EXPECT_EQ(Catalogue::at(".cache/yarn"), Sandbox::home() + "/.cache/yarn");
    EXPECT_EQ(Catalogue::at(".cache"), Sandbox::home() + "/.cache");
    EXPECT_EQ(Catalogue::at(".m2/repository"), Sandbox::home() + "/.m2/repository");
    qputenv("XDG_CACHE_HOME", "/var/cache/someone//");
    EXPECT_EQ(Catalogue::cacheFolder(), "/var/cache/someone");
    EXPECT_EQ(Catalogue::at(".cache/yarn"), "/var/cache/someone/yarn");
    EXPECT_EQ(Catalogue::at(".cache"), "/var/cache/someone");
    EXPECT_EQ(Catalogue::at(".cachet/x"), Sandbox::home() + "/.cachet/x");  // only the whole component
    EXPECT_EQ(Catalogue::at("Library/Caches/Yarn"), Sandbox::home() + "/Library/Caches/Yarn");
    qputenv("XDG_CACHE_HOME", "relative/cache");  // not absolute: ignored
    EXPECT_EQ(Catalogue::at(".cache/yarn"), Sandbox::home() + "/.cache/yarn");
    qputenv("XDG_CACHE_HOME", "");
    EXPECT_EQ(Catalogue::cacheFolder(), Sandbox::home() + "/.cache");
    // The home itself, or a folder above it, would make the whole home a cache.
    for (const QString& above : {Sandbox::home(), Sandbox::home() + "/", Sandbox::root(), QString("/")}) {
        qputenv("XDG_CACHE_HOME", above.toUtf8());
        EXPECT_EQ(Catalogue::cacheFolder(), Sandbox::home() + "/.cache") << above.toStdString();
    }
    qputenv("XDG_CACHE_HOME", (Sandbox::home() + "/cache-of-mine").toUtf8());
    EXPECT_EQ(Catalogue::cacheFolder(), Sandbox::home() + "/cache-of-mine");
    qputenv("XDG_CACHE_HOME", saved);
}
