// The demonstration machine's apps with what they left, apps already gone, what starts at login,
// and a short history of earlier clearing.

#include <algorithm>

#include "core/home.h"
#include "demo/demo.h"
#include "demo/demo_tree.h"

using namespace DemoTree;

namespace {

Leftover left(const QString& relative, qint64 bytes, const char* why, Confidence confidence) {
    return {Home::at(relative), bytes, QString::fromUtf8(why), confidence};
}

InstalledApp app(const char* name, const char* bundleID, qint64 bytes, std::optional<double> usedDaysAgo,
                 const char* developer, QList<Leftover> leftovers, const QDateTime& now) {
    InstalledApp a;
    a.name = QString::fromUtf8(name);
    a.bundleID = QLatin1String(bundleID);
    a.path = QStringLiteral("/Applications/") + a.name + QStringLiteral(".app");
    a.appBytes = bytes;
    if (usedDaysAgo) a.lastUsed = daysBefore(now, *usedDaysAgo);
    a.developer = QString::fromUtf8(developer);
    a.leftovers = std::move(leftovers);
    return a;
}

HistoryEntry::Moved moved(const QString& relative, qint64 bytes, const QDateTime& when, quint64 ino) {
    const QString original = Home::at(relative);
    const QString name = original.section(QLatin1Char('/'), -1);
    return {original, Home::trashFolder() + QStringLiteral("/files/") + name, bytes, 16777232, ino,
            double(when.toSecsSinceEpoch())};
}

HistoryEntry entry(const char* uuid, const QDateTime& when, const char* title, QList<HistoryEntry::Moved> items,
                   HistoryEntry::State state, qint64 bytes = 0) {
    for (const auto& m : items) bytes += m.bytes;
    return {QUuid(QLatin1String(uuid)), when, QString::fromUtf8(title), bytes, std::move(items), state};
}

}  // namespace

namespace Demo {

QList<InstalledApp> apps(const QDateTime& now) {
    const Confidence sure = Confidence::sure, likely = Confidence::likely, yours = Confidence::yours;
    QList<InstalledApp> all{
        app("Xcode", "com.apple.dt.Xcode", 11'800 * MB, 0.2, "Apple",
            {left("Library/Developer/Xcode/UserData", 240 * MB, "Named after the app", likely),
             left("Library/Preferences/com.apple.dt.Xcode.plist", 1 * MB, "Bundle ID matches (com.apple.dt.Xcode)", sure)},
            now),
        app("Slack", "com.tinyspeck.slackmacgap", 480 * MB, 0.1, "Slack Technologies",
            {left("Library/Application Support/Slack", 1'200 * MB, "Named after the app", likely),
             left("Library/Caches/com.tinyspeck.slackmacgap", 900 * MB, "Bundle ID matches (com.tinyspeck.slackmacgap)", sure),
             left("Library/Preferences/com.tinyspeck.slackmacgap.plist", 1 * MB, "Bundle ID matches (com.tinyspeck.slackmacgap)", sure)},
            now),
        app("Spotify", "com.spotify.client", 310 * MB, 3, "Spotify",
            {left("Library/Application Support/Spotify", 3'200 * MB, "Named after the app", likely),
             left("Library/Caches/com.spotify.client", 1'800 * MB, "Bundle ID matches (com.spotify.client)", sure)},
            now),
        app("Figma", "com.figma.Desktop", 420 * MB, 12, "Figma",
            {left("Library/Caches/com.figma.Desktop", 650 * MB, "Bundle ID matches (com.figma.Desktop)", sure),
             left("Library/Application Support/Figma", 90 * MB, "Named after the app", likely)},
            now),
        app("Docker", "com.docker.docker", 2'100 * MB, 1, "Docker",
            {left("Library/Containers/com.docker.docker", 38'090 * MB, "Bundle ID matches (com.docker.docker)", sure),
             left("Library/Group Containers/9BNSXJN65R.com.docker", 40 * MB, "Made by the same signing team (9BNSXJN65R)", sure),
             left("Library/Application Support/com.docker.helper", 310 * MB, "Same developer's ID (com.docker)", likely),
             left("Library/Application Support/Docker Desktop Backups", 1'900 * MB, "Name contains \"Docker\"", yours)},
            now),
        app("Microsoft Word", "com.microsoft.Word", 2'600 * MB, 30, "Microsoft Corporation",
            {left("Library/Containers/com.microsoft.Word", 1'200 * MB, "Bundle ID matches (com.microsoft.Word)", sure),
             left("Library/Group Containers/UBF8T346G9.Office", 2'200 * MB, "Shared by the maker's apps", yours)},
            now),
        app("Tot", "com.iconfactory.Tot", 30 * MB, std::nullopt, "The Iconfactory", {}, now),
    };
    // Largest first, as the app scanner lists them.
    std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.total() > b.total(); });
    return all;
}

QList<Orphan> orphans() {
    QList<Orphan> all{
        {QStringLiteral("Sketch"), QStringLiteral("com.bohemiancoding.sketch3"),
         {left("Library/Application Support/com.bohemiancoding.sketch3", 1'400 * MB, "Bundle ID of an app that isn't installed", Confidence::sure),
          left("Library/Caches/com.bohemiancoding.sketch3", 300 * MB, "Bundle ID of an app that isn't installed", Confidence::sure)}},
        {QStringLiteral("Zoom"), QStringLiteral("us.zoom.xos"),
         {left("Library/Application Support/zoom.us", 220 * MB, "Named after the app", Confidence::likely),
          left("Library/Logs/zoom.us", 40 * MB, "Named after the app", Confidence::likely)}},
        {QStringLiteral("Notion"), QStringLiteral("notion.id"),
         {left("Library/Application Support/Notion", 610 * MB, "Named like the app", Confidence::yours)}},
    };
    std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.bytes() > b.bytes(); });
    return all;
}

QList<LoginItem> loginItems() {
    using K = LoginItem::Kind;
    const auto agents = Home::at(QStringLiteral("Library/LaunchAgents/"));
    return {
        {QStringLiteral("Slack"), QStringLiteral("com.tinyspeck.slackmacgap"), QStringLiteral("Slack Technologies"), K::app, true,
         QStringLiteral("/Applications/Slack.app"), false, QStringLiteral("Slack Technologies"), false, true},
        {QStringLiteral("Spotify"), QStringLiteral("com.spotify.client.startuphelper"), QStringLiteral("Spotify"), K::loginItem, false,
         QStringLiteral("/Applications/Spotify.app/Contents/Library/LoginItems/SpotifyStartupHelper.app"), false,
         QStringLiteral("Spotify"), false, true},
        {QStringLiteral("Google Updater"), QStringLiteral("com.google.GoogleUpdater.wake"), QStringLiteral("Google"), K::agent, true,
         agents + QStringLiteral("com.google.GoogleUpdater.wake.plist"), false, QStringLiteral("Google LLC"),
         false, true},
        {QStringLiteral("Zoom updater"), QStringLiteral("us.zoom.updater"), QStringLiteral("Zoom"), K::agent, true,
         agents + QStringLiteral("us.zoom.updater.plist"), false, QStringLiteral("Not signed"), true, false},
        {QStringLiteral("Docker helper"), QStringLiteral("com.docker.helper"), QStringLiteral("Docker"), K::agent, true,
         QStringLiteral("/Library/LaunchAgents/com.docker.helper.plist"), true, QStringLiteral("Docker Inc"),
         false, true},
        {QStringLiteral("Docker vmnetd"), QStringLiteral("com.docker.vmnetd"), QStringLiteral("Docker"), K::daemon, true,
         QStringLiteral("/Library/LaunchDaemons/com.docker.vmnetd.plist"), true, QStringLiteral("Docker Inc"),
         false, true},
        {QStringLiteral("Sketch mirror helper"), QStringLiteral("com.bohemiancoding.sketchmirror.helper"), QStringLiteral("Sketch"),
         K::daemon, false, QStringLiteral("/Library/LaunchDaemons/com.bohemiancoding.sketchmirror.helper.plist"), true,
         QStringLiteral("Not signed"), true, false},
    };
}

QList<HistoryEntry> history(const QDateTime& now) {
    const QDateTime hour = daysBefore(now, 1.0 / 24), days2 = daysBefore(now, 2), days5 = daysBefore(now, 5),
                    days12 = daysBefore(now, 12), days20 = daysBefore(now, 20);
    using S = HistoryEntry::State;
    return {
        entry("5b0f9d9e-3c1a-4d7e-9a4b-0d6f2e8c1a01", hour, "Xcode build data",
              {moved("Library/Developer/Xcode/DerivedData/Tiles-qwhzkcnmbvlfjdgrtyxpsaeuoimz", 850 * MB, hour, 9211001)}, S::inTrash),
        entry("1e7c4a2b-8f3d-4b6a-b1c9-5a2d7e9f0b02", days2, "App caches",
              {moved("Library/Caches/com.adobe.acc.AdobeDesktopService", 240 * MB, days2, 9211002),
               moved("Library/Caches/com.hnc.Discord", 60 * MB, days2, 9211003)},
              S::inTrash),
        entry("9a3b5c7d-1e2f-4a6b-8c0d-2e4f6a8b0c03", days5, "Simulators that can't run any more", {}, S::permanent, 4 * GB),
        entry("c4d6e8f0-2a4b-4c6d-8e0f-1a3b5c7d9e04", days12, "Logs and crash reports",
              {moved("Library/Logs/DiagnosticReports", 130 * MB, days12, 9211004)}, S::emptied),
        entry("7f9e1d3c-5b7a-4f9e-a1c3-e5d7f9b1a305", days20, "Installers in Downloads",
              {moved("Downloads/Slack-4.36.140-macOS.dmg", 190 * MB, days20, 9211005)}, S::restored),
    };
}

}  // namespace Demo
