#include <gtest/gtest.h>

#include <cstdio>

#include <QJsonArray>
#include <QJsonObject>

#include "core/json.h"
#include "core/paths.h"
#include "scan/extras.h"
#include "scan/linux_fixture.h"
#include "support/linux_apps.h"
#include "support/run_quarle.h"

using LinuxFixtures::ScopedEnv;

TEST_F(LinuxScanTest, ACacheFolderInsideTheHomeTakesTheRulesWithIt) {
    const QString cache = Sandbox::home() + "/xdg/cache";
    const ScopedEnv moved("XDG_CACHE_HOME", Files::bytes(cache));
    LinuxHome linux(Sandbox::home(), QDateTime::currentDateTimeUtc(), cache);
    linux.xdgCaches();
    linux.file(".cache/leftover/blob", 64 * 1024);  // no longer the cache folder
    const Scanned s = scan();
    EXPECT_EQ(findingOf(s.result, "xdgcache")->place, "~/xdg/cache · 4 folders");
    EXPECT_EQ(findingOf(s.result, "yarn")->paths, QStringList({cache + "/yarn"}));
    EXPECT_EQ(findingOf(s.result, "thumbnails")->bytes, linux.cacheBytes("thumbnails"));
    EXPECT_EQ(findingOf(s.result, "jetbrains")->parts.size(), 2);
    for (const QString& path : allParts(s.result)) EXPECT_TRUE(Paths::isWithin(path, cache)) << path.toStdString();
}

TEST_F(LinuxScanTest, ACacheFolderOutsideTheHomeIsWalkedAsATreeOfItsOwn) {
    const QString cache = Sandbox::scratch("elsewhere") + "/cache";
    const ScopedEnv moved("XDG_CACHE_HOME", Files::bytes(cache));
    LinuxHome linux(Sandbox::home(), QDateTime::currentDateTimeUtc(), cache);
    linux.xdgCaches();
    linux.developerCaches();
    Scanned s = scan();
    EXPECT_EQ(s.data.cache.path, cache);
    EXPECT_EQ(s.data.cache.bytes, linux.cacheBytes(""));
    EXPECT_EQ(s.result.home.bytes, linux.bytesUnder(""));  // the home tree holds only the home
    const Finding* xdg = findingOf(s.result, "xdgcache");
    ASSERT_TRUE(xdg);
    EXPECT_EQ(xdg->bytes, linux.cacheBytes("spotify") + linux.cacheBytes("fontconfig") + linux.cacheBytes("tracker3") +
                              linux.cacheBytes("motd.legal-displayed"));
    EXPECT_EQ(findingOf(s.result, "pnpm")->bytes, linux.bytesUnder(".local/share/pnpm/store") + linux.cacheBytes("pnpm"));
    // The second tree's roots (its folders four levels down) joined the early rows.
    qint64 pip = 0;
    for (const EarlyRow& row : s.lastEarly())
        if (row.id == "pip") pip = row.bytes;
    EXPECT_EQ(pip, linux.cacheBytes("pip/http-v2/a/b"));

    // Clearing a part of the outside tree and putting it back re-derives as a fresh scan does.
    const Part spotify = *std::find_if(xdg->parts.begin(), xdg->parts.end(), [](const Part& p) { return p.name == "spotify"; });
    const QString trashed = Sandbox::scratch("trash") + "/spotify";
    ASSERT_EQ(std::rename(Files::bytes(spotify.path).constData(), Files::bytes(trashed).constData()), 0);
    ScanData data = s.data;
    data.removed(*xdg, spotify);
    EXPECT_EQ(data.cache.bytes, linux.cacheBytes(""));  // du, now that spotify left
    const Scanned fresh = scan();
    const ScanResult rederived = Scanner::derive(data, {"Disk", 2 * diskUsed, diskUsed, diskUsed});
    EXPECT_EQ(findingOf(rederived, "xdgcache")->bytes, findingOf(fresh.result, "xdgcache")->bytes);
    EXPECT_EQ(rederived.system, fresh.result.system);
    ASSERT_EQ(std::rename(Files::bytes(trashed).constData(), Files::bytes(spotify.path).constData()), 0);
    EXPECT_TRUE(data.restored(spotify.path));
    EXPECT_EQ(Scanner::derive(data, {"Disk", 2 * diskUsed, diskUsed, diskUsed}).findings, s.result.findings);
}

TEST_F(LinuxScanTest, ARelativeCacheHomeIsIgnored) {
    const ScopedEnv relative("XDG_CACHE_HOME", "xdg/cache");
    LinuxHome linux(Sandbox::home());
    linux.xdgCaches();
    const Scanned s = scan();
    EXPECT_EQ(s.data.cache, SpaceNode());
    EXPECT_EQ(findingOf(s.result, "xdgcache")->place, "~/.cache · 4 folders");
}

TEST_F(LinuxScanTest, RunningAppsKeepTheirCaches) {
    LinuxHome linux(Sandbox::home());
    linux.electronApps();
    linux.flatpakData();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const ScanData data = scan().data;

    const auto electron = Scanner::electronCaches(data.home, [](const QString& app) { return app == "Slack"; }, now);
    ASSERT_TRUE(electron);
    EXPECT_EQ(electron->place, "~/.config · 2 apps");
    for (const Part& p : electron->parts) EXPECT_FALSE(p.name.startsWith("Slack")) << p.name.toStdString();
    EXPECT_FALSE(Scanner::electronCaches(data.home, [](const QString&) { return true; }, now));

    const auto flatpak = Scanner::flatpakCaches(data.home, {"org.gnome.Maps", "org.other.App"}, now);
    ASSERT_TRUE(flatpak);
    EXPECT_EQ(partNames(&*flatpak), QStringList({"com.spotify.Client", "org.mozilla.firefox"}));

    // A scan asks flatpak itself which sandboxes run (in a child: the answer is kept for a moment).
    flatpakRunning("org.mozilla.firefox\\n");
    const Ran ran = runQuarle({"report", "--json"}, {"QUARLE_ROOT=" + Files::bytes(Sandbox::home()),
                                                     "PATH=" + qgetenv("PATH")});
    ASSERT_EQ(ran.status, 0) << ran.err.toStdString();
    const auto json = parseJson(ran.out);
    ASSERT_TRUE(json);
    QStringList offered;
    for (const QJsonValue& f : json->toObject().value("findings").toArray())
        if (f.toObject().value("id").toString() == "flatpakcaches")
            for (const QJsonValue& p : f.toObject().value("parts").toArray()) offered.append(p.toObject().value("name").toString());
    offered.sort();
    EXPECT_EQ(offered, QStringList({"com.spotify.Client", "org.gnome.Maps"}));
}
