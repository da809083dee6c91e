#include <gtest/gtest.h>

#include "core/home.h"
#include "core/paths.h"
#include "scan/linux_fixture.h"
#include "scan/system_data.h"
#include "support/mac_home.h"
#include "support/mount.h"

TEST_F(LinuxScanTest, FindingsOnALinuxHome) {
    LinuxHome linux(Sandbox::home());
    linux.everything();
    const Scanned s = scan();
    const ScanResult& r = s.result;
    EXPECT_EQ(r.home.bytes, linux.bytesUnder(""));
    ASSERT_TRUE(s.data.linuxSystem);
    EXPECT_TRUE(s.data.outside.isEmpty());  // the macOS folders are not looked for

    const auto c = [&](const char* folder) { return linux.cacheBytes(folder); };
    const auto h = [&](const char* folder) { return linux.bytesUnder(folder); };
    const QMap<QString, qint64> expected{
        {"xdgcache", c("spotify") + c("fontconfig") + c("tracker3") + c("motd.legal-displayed")},
        {"thumbnails", c("thumbnails")},
        {"browsercaches", c("google-chrome") + c("chromium") + c("BraveSoftware") + c("mozilla")},
        {"ccache", c("ccache") + h(".ccache")},
        {"sccache", c("sccache")},
        {"shadercaches", c("mesa_shader_cache") + c("mesa_shader_cache_db")},
        {"maven", h(".m2/repository")},
        {"rustup", linux.bytesInside(".rustup/toolchains")},
        {"bazel", c("bazel")},
        {"gomodules", h("go/pkg/mod")},
        {"containers", h(".local/share/containers/storage")},
        {"rootlessdocker", h(".local/share/docker")},
        {"homebrew", c("Homebrew")},
        {"yarn", c("yarn")},
        {"npm", h(".npm/_cacache") + h(".npm/_npx")},
        {"pip", c("pip") + c("uv")},
        {"gradle", h(".gradle/caches") + h(".gradle/wrapper/dists")},
        {"gobuild", c("go-build")},
        {"jetbrains", linux.cacheInside("JetBrains")},
        {"playwright", linux.cacheInside("ms-playwright") + linux.cacheInside("puppeteer")},
        {"pnpm", h(".local/share/pnpm/store") + c("pnpm")},
        {"cargo", h(".cargo/registry") + h(".cargo/git")},
        {"huggingface", linux.cacheInside("huggingface") - c("huggingface/token") - c("huggingface/stored_tokens")},
        {"electroncaches", linux.bytesInside(".config/Code") - h(".config/Code/User") + linux.bytesInside(".config/Slack") -
                               h(".config/Slack/storage") +
                               h(".config/discord/GPUCache")},
        {"flatpakcaches", h(".var/app/org.gnome.Maps/cache") + h(".var/app/com.spotify.Client/cache") +
                              h(".var/app/org.mozilla.firefox/cache")},
        {"installers", h("Downloads/debian-12.iso")},
    };
    EXPECT_EQ(checkedRows(r), expected);

    // One part per child of .cache that no row owns; the state apps keep and logins never.
    EXPECT_EQ(partNames(findingOf(r, "xdgcache")), QStringList({"fontconfig", "motd.legal-displayed", "spotify", "tracker3"}));
    for (const QString& path : allParts(r))
        for (const char* kept : {"keepassxc", "obexd", "gh-token", "huggingface/token", "huggingface/stored_tokens"})
            EXPECT_FALSE(Paths::isWithin(path, linux.inCache(kept))) << path.toStdString();
    EXPECT_EQ(partNames(findingOf(r, "huggingface")), QStringList({"hub"}));

    EXPECT_EQ(partNames(findingOf(r, "electroncaches")),
              QStringList({"Code · Cache", "Code · CachedData", "Code · CachedExtensionVSIXs", "Code · Code Cache",
                           "Code · GPUCache", "Slack · Cache", "Slack · DawnCache", "discord · GPUCache"}));
    EXPECT_EQ(partNames(findingOf(r, "flatpakcaches")),
              QStringList({"com.spotify.Client", "org.gnome.Maps", "org.mozilla.firefox"}));

    // The early rows hold the Linux rules measured by the same walk (what lies below its exact
    // levels), never a kept one.
    QMap<QString, qint64> early;
    for (const EarlyRow& row : s.lastEarly()) early.insert(row.id, row.bytes);
    EXPECT_EQ(early.value("maven"), linux.bytesUnder(".m2/repository/org/junit"));
    EXPECT_EQ(early.value("pnpm"), linux.bytesUnder(".local/share/pnpm/store") + linux.cacheBytes("pnpm/metadata/registry.npmjs.org"));
    EXPECT_LE(early.value("xdgcache"), expected["xdgcache"]);
    EXPECT_GT(early.value("xdgcache"), 0);
    EXPECT_FALSE(early.contains("bazel"));
}

TEST_F(LinuxScanTest, UserFoldersMakeTheSlicesAndTheHomeIsCountedOnce) {
    LinuxHome linux(Sandbox::home());
    linux.everything();
    const Scanned s = scan();
    const ScanResult& r = s.result;
    EXPECT_EQ(slice(r, "Photos"), linux.bytesUnder("Bilder"));
    EXPECT_EQ(slice(r, "Documents"), linux.bytesUnder("Dokumente"));  // the desktop is the home: not set up
    EXPECT_EQ(slice(r, "Music & Movies"), linux.bytesUnder("Musik") + linux.bytesUnder("Videos"));
    EXPECT_EQ(slice(r, "Downloads"), linux.bytesUnder("Downloads"));
    qint64 developer = 0;
    for (const QString& f : SystemData::developerFolders()) developer += linux.bytesUnder(f);
    EXPECT_EQ(slice(r, "Developer"), developer);

    // System Data: the home's share, row by row, and the rest of the disk by subtraction.
    EXPECT_EQ(r.systemTotal, LinuxScanTest::diskUsed - [&] {
        qint64 sum = 0;
        for (const DiskPart& p : r.strata)
            if (p.name != "System Data") sum += p.bytes;
        return sum;
    }());
    qint64 rows = 0;
    for (const SystemPart& p : r.system) rows += p.bytes;
    EXPECT_EQ(rows, r.systemTotal);
    const auto f = [&](const char* id) { return findingOf(r, id)->bytes; };
    EXPECT_EQ(systemRow(r, "App caches"), f("xdgcache") + f("thumbnails") + f("browsercaches") + f("shadercaches") +
                                              f("electroncaches") + f("flatpakcaches"));
    EXPECT_EQ(systemRow(r, "Flatpak apps and runtimes"), linux.bytesUnder(".local/share/flatpak"));
    EXPECT_EQ(systemRow(r, "Apps' own data"),
              linux.bytesUnder(".config") - f("electroncaches") + linux.bytesUnder(".var/app") - f("flatpakcaches") +
                  linux.bytesUnder(".local/share") - linux.bytesUnder(".local/share/flatpak") -
                  linux.bytesUnder(".local/share/pnpm/store") - linux.bytesUnder(".local/share/containers/storage") -
                  linux.bytesUnder(".local/share/docker"));
    // What no slice and no row takes: loose settings, the state kept in .cache, the English
    // Pictures and Desktop folders that are not the user's here, and the folders that only hold
    // what slices and rows count.
    qint64 holders = 0;
    for (const char* folder : {"", ".cache", ".cargo", ".gradle", ".gradle/wrapper", ".local", ".m2", ".npm", ".rustup", ".var", "go", "go/pkg"})
        holders += Files::allocated(linux.at(folder));
    EXPECT_EQ(systemRow(r, "Other files in your home"),
              linux.bytesUnder(".rustup/settings.toml") + linux.bytesUnder(".cargo/bin") +
                  linux.cacheBytes("keepassxc") + linux.cacheBytes("obexd") + linux.cacheBytes("gh-token") +
                  linux.bytesUnder("Pictures") + linux.bytesUnder("Desktop") + holders);
    for (const char* mac : {"macOS itself", "Purgeable", "Shared files in /Library", "Swap and sleep image"})
        EXPECT_EQ(systemRow(r, mac), 0) << mac;
    ASSERT_FALSE(r.system.isEmpty());
    EXPECT_EQ(r.system.first().name, "Not measured");
    EXPECT_TRUE(r.system.first().estimated);
}

TEST_F(LinuxScanTest, TheShapeOfAHome) {
    EXPECT_FALSE(Scanner::linuxShaped(Sandbox::home()));  // empty: as it always was
    Files::makeDirs(Sandbox::home() + "/.local/share");
    EXPECT_TRUE(Scanner::linuxShaped(Sandbox::home()));
    Files::makeDirs(Sandbox::home() + "/Library");
    EXPECT_FALSE(Scanner::linuxShaped(Sandbox::home()));  // every Mac home has one
    Files::removeTree(Sandbox::home() + "/Library");
    Files::symlink("/usr", Sandbox::home() + "/Library");  // a link to a folder is no Library folder
    EXPECT_TRUE(Scanner::linuxShaped(Sandbox::home()));
}

TEST_F(LinuxScanTest, AMacShapedHomeWithLinuxCachesStaysMacShaped) {
    MacHome mac(Sandbox::home());
    mac.everything();
    LinuxHome linux(Sandbox::home());
    linux.electronApps();
    const Scanned s = scan();
    EXPECT_FALSE(s.data.linuxSystem);
    EXPECT_TRUE(std::any_of(s.result.system.begin(), s.result.system.end(),
                            [](const SystemPart& p) { return p.name == "iPhone and iPad backups"; }));
    EXPECT_TRUE(findingOf(s.result, "electroncaches"));  // an extra of any home with such folders
    EXPECT_FALSE(findingOf(s.result, "xdgcache"));  // only own rows in MacHome's .cache
}

TEST_F(LinuxScanTest, TheTrashRowNamesTheDesktopsTrashFolder) {
    LinuxHome linux(Sandbox::home());
    linux.everything();
    Files::makeDirs(Home::trashFolder() + "/files");
    Files::write(Home::trashFolder() + "/files/old.txt", 40'000);
    const Scanned s = scan();
    const Finding* bin = findingOf(s.result, "trash");
    ASSERT_TRUE(bin);
    EXPECT_EQ(bin->place, "~/.local/share/Trash");
    EXPECT_EQ(bin->bytes, Files::allocated(Home::trashFolder() + "/files/old.txt"));
    EXPECT_TRUE(bin->removal.isCommand());

    // Without access there is no Full Disk Access to turn on: the row says what is wrong in Linux words.
    ScanData denied = s.data;
    denied.fullDiskAccess = false;
    const ScanResult r = Scanner::derive(denied, s.result.volume);
    const Finding* locked = findingOf(r, "trash");
    ASSERT_TRUE(locked);
    EXPECT_TRUE(locked->removal.isNone());
    EXPECT_EQ(locked->place, "~/.local/share/Trash · Quarle can't read all of it");
    EXPECT_FALSE(locked->explain.contains("Full Disk Access")) << locked->explain.toStdString();
    EXPECT_FALSE(locked->explain.contains("Finder")) << locked->explain.toStdString();
}

// On a file system that shares blocks, an item whose blocks a kept file holds too says so; one
// whose copies all lie inside it frees them and says nothing. The kept copy lies deeper, so that
// the item is reached first and pays for the blocks.
TEST_F(LinuxScanTest, ItemsSharingBlocksWithKeptFilesSaySo) {
    const TestMount fs = TestMount::loop("btrfs", Sandbox::scratch("btrfs") + "/image", Sandbox::home());
    if (!fs.ok()) GTEST_SKIP() << fs.why().toStdString();
    const QString cache = Sandbox::home() + "/.cache";
    for (const char* folder : {"/.cache/app", "/.cache/twins", "/Documents/a/b/c/d"}) Files::makeDirs(Sandbox::home() + folder);
    Files::write(cache + "/app/blob", 8 * 1024 * 1024, 'b');
    Files::write(cache + "/twins/x", 8 * 1024 * 1024, 'x');
    for (const auto& [from, to] : {std::pair{"/app/blob", "/../Documents/a/b/c/d/blob"}, {"/twins/x", "/twins/y"}})
        ASSERT_EQ(std::system(("cp --reflink=always " + cache + from + " " + cache + to).toLocal8Bit().constData()), 0);
    ASSERT_EQ(std::system("sync"), 0);

    const Scanned s = scan();
    const Finding* row = findingOf(s.result, "xdgcache");
    ASSERT_TRUE(row);
    QMap<QString, QString> notes;
    for (const Part& p : row->parts) notes.insert(p.name, p.note);
    EXPECT_TRUE(notes.value("app").endsWith(" · shares 8 MB with files that stay")) << notes.value("app").toStdString();
    EXPECT_FALSE(notes.value("twins").contains("shares")) << notes.value("twins").toStdString();
}
