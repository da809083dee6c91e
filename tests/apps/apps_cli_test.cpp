#include <gtest/gtest.h>

#include "apps/app_scanner.h"
#include "apps/login_items.h"
#include "core/paths.h"
#include "core/record_json.h"
#include "support/mac_apps.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

namespace {

QByteArray b(const QString& s) { return Paths::toBytes(s); }

// A Mac-shaped home and system: two apps, leftovers of one, an app that is gone, a login item.
struct Fixture {
    QString home;
    SystemFolders system;

    explicit Fixture(const QString& homeFolder) : home(homeFolder) {
        system = SystemFolders::under(Sandbox::scratch("system"));
        MacApps::app(system.applications, "Editor.app", MacApps::info("com.example.Editor", "Editor"), MacApps::Form::binary, 800'000);
        MacApps::app(home + "/Applications", "Night Owl.app", MacApps::info("net.nightowl.NightOwl", "Night Owl"));
        MacApps::libraryFile(home, "Preferences", "com.example.Editor.plist");
        MacApps::libraryFolder(home, "Application Support", "Editor Backups", 50'000);
        MacApps::libraryFile(home, "Preferences", "net.example.gone.plist");
        MacApps::libraryFolder(home, "Containers", "net.example.gone", 70'000);
        MacApps::writePlist(home + "/Library/LaunchAgents/com.example.helper.plist",
                            {{"Label", "com.example.helper"}, {"AssociatedBundleIdentifiers", QStringList{"com.example.Editor"}},
                             {"Program", "/nonexistent/helper"}});
    }
    QByteArray systemRoot() const { return "QUARLE_SYSTEM_ROOT=" + b(Paths::parentOf(system.applications)); }
};

}  // namespace

TEST(AppsVerbs, AppsListsEachAppWithItsLeftoversAsTextAndAsJson) {
    Sandbox::clearHome();
    const Fixture f(Sandbox::home());

    const Ran text = runQuarle({"apps"}, {f.systemRoot()});
    EXPECT_EQ(text.status, 0) << text.err.constData();
    const QString out = QString::fromUtf8(text.out);
    // Sizes add up in the heading; leftovers come with their confidence and reason.
    EXPECT_TRUE(out.startsWith("Editor — 885 KB (app 819 KB + 66 KB left behind)\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("  Likely       57 KB  ~/Library/Application Support/Editor Backups — Name contains \"Editor\"\n"));
    EXPECT_TRUE(out.endsWith("\n2 apps, 942 KB in all.\n"));

    const Ran json = runQuarle({"apps", "--json"}, {f.systemRoot()});
    EXPECT_EQ(json.status, 0);
    const auto apps = decodeJsonList<InstalledApp>(parseJson(json.out).value_or(QJsonValue()));
    ASSERT_TRUE(apps) << json.out.constData();
    EXPECT_EQ(*apps, AppScanner::scan({}, f.system).apps);
    EXPECT_FALSE(json.out.contains("lastUsed")) << "an unknown last use is left out";
}

TEST(AppsVerbs, OrphansAndLoginItemsWorkOnAnotherMacShapedHome) {
    const Fixture f(Sandbox::scratch("mac-home"));
    const QByteArray root = "QUARLE_ROOT=" + b(f.home);

    const QList<std::pair<QByteArray, QString>> expected{
        {"orphans",
         "net.example.gone — 82 KB\n"
         "  Likely       78 KB  ~/Library/Containers/net.example.gone — Bundle ID of an app that isn't installed\n"
         "  Likely        4 KB  ~/Library/Preferences/net.example.gone.plist — Bundle ID of an app that isn't installed\n"
         "\n"
         "Leftovers of 1 app that are gone, 82 KB in all.\n"},
        {"login-items",
         "Editor (com.example.helper)\n"
         "  This user · agent · enabled · developer com.example · Not signed\n"
         "  ~/Library/LaunchAgents/com.example.helper.plist\n"
         "  Its program no longer exists.\n"
         "  The app it belongs to is installed.\n"
         "\n"
         "1 login item.\n"}};
    for (const auto& [verb, text] : expected) {
        const Ran ran = runQuarle({verb}, {root, f.systemRoot()});
        EXPECT_EQ(ran.status, 0) << ran.err.constData();
        EXPECT_EQ(QString::fromUtf8(ran.out), text);
        const Ran json = runQuarle({verb, "--json"}, {root, f.systemRoot()});
        const auto list = parseJson(json.out);
        ASSERT_TRUE(list && list->isArray() && list->toArray().size() == 1) << json.out.constData();
        EXPECT_TRUE(list->toArray()[0].toObject().contains(verb == "orphans" ? "leftovers" : "appStillThere"));
    }

    const QByteArray empty = "QUARLE_ROOT=" + b(Sandbox::scratch("empty-home"));
    const QByteArray noSystem = "QUARLE_SYSTEM_ROOT=" + b(Sandbox::scratch("empty-system"));
    EXPECT_EQ(runQuarle({"orphans"}, {empty, noSystem}).out, "No leftovers of apps that are gone.\n");
    EXPECT_EQ(runQuarle({"login-items"}, {empty, noSystem}).out, "Nothing starts at login.\n");
    EXPECT_TRUE(runQuarle({"apps"}, {empty, noSystem}).out.startsWith("No apps in "));
}
