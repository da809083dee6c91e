#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>

#include "apps/app_scanner.h"
#include "core/paths.h"
#include "measure/walker.h"
#include "support/as_user.h"
#include "support/files.h"
#include "support/lists.h"
#include "support/mac_apps.h"
#include "support/sandbox.h"

using MacApps::Form;

namespace {

const InstalledApp& item(const QList<InstalledApp>& apps, const QString& name) { return itemBy(apps, &InstalledApp::name, name); }

// Leftover path below the home's Library → confidence.
QMap<QString, Confidence> leftoversOf(const InstalledApp& app) {
    QMap<QString, Confidence> out;
    const QString library = Sandbox::home() + "/Library/";
    for (const Leftover& l : app.leftovers) out.insert(l.path.mid(library.size()), l.confidence);
    return out;
}

class AppScannerTest : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        home = Sandbox::home();
        system = SystemFolders::under(Sandbox::scratch("system"));
        Files::makeDirs(system.applications);
    }
    QString home;
    SystemFolders system;
};

}  // namespace

TEST_F(AppScannerTest, ReadsXmlAndBinaryInfoPlistsAndFallsBackToTheFileName) {
    const QString apps = system.applications;
    MacApps::app(apps, "Editor.app", MacApps::info("com.example.Editor", "Editor Deluxe"));
    MacApps::app(apps, "Owl.app",
                 {{"CFBundleIdentifier", "net.nightowl.NightOwl"}, {"CFBundleDisplayName", ""}, {"CFBundleName", "Night Owl"}},
                 Form::binary);
    MacApps::app(apps, "Plain.app", {{"CFBundleIdentifier", "org.plain.Plain"}, {"CFBundleName", ""}});
    MacApps::app(apps, "Numbers.app", {{"CFBundleIdentifier", "com.example.numbers"}, {"CFBundleDisplayName", 42}});
    // Unreadable property lists: the app is still listed, by its file name, without an identifier.
    Files::makeDirs(apps + "/Broken.app/Contents");
    Files::writeText(apps + "/Broken.app/Contents/Info.plist", "<?xml version=\"1.0\"?><plist><dict><key>CFBundle");
    Files::makeDirs(apps + "/Old.app/Contents");
    Files::writeText(apps + "/Old.app/Contents/Info.plist", "{ CFBundleIdentifier = \"com.example.old\"; }");
    Files::makeDirs(apps + "/Empty.app");
    MacApps::writePlist(apps + "/List.app/Contents/Info.plist", {});  // a dictionary without keys
    // Not apps of the top level: a sub-folder's app, a file named .app, a folder without the suffix, a link.
    MacApps::app(apps + "/Utilities", "Tool.app", MacApps::info("com.example.Tool", "Tool"));
    Files::writeText(apps + "/Fake.app", "not a bundle");
    MacApps::app(apps, "Folder", MacApps::info("com.example.folder", "Folder"));
    Files::symlink(apps + "/Editor.app", apps + "/Linked.app");
    MacApps::app(home + "/Applications", "Mine.app", MacApps::info("me.mine.Mine", "Mine"), Form::binary);
    Files::makeDirs(home + "/Applications/" + Paths::fromBytes(QByteArray("Caf\xe9.app")));

    QList<AppScanner::Bundle> bundles = AppScanner::bundles(system);
    QStringList listed;
    for (const AppScanner::Bundle& b : bundles) listed.append(b.name + "|" + b.bundleID);
    EXPECT_EQ(listed, (QStringList{"Broken|", "Editor Deluxe|com.example.Editor", "Empty|", "List|",
                                   "Numbers|com.example.numbers", "Old|", "Night Owl|net.nightowl.NightOwl",
                                   "Plain|org.plain.Plain", Paths::fromBytes(QByteArray("Caf\xe9|")), "Mine|me.mine.Mine"}))
        << "each folder in name order, the system's first; libplist 2.2 does not read the old text form";
    EXPECT_EQ(bundles.last().path, home + "/Applications/Mine.app");
    EXPECT_EQ(AppScanner::developer(bundles[1]), "com.example");
    EXPECT_EQ(AppScanner::developer(bundles[0]), "");
    EXPECT_EQ(AppScanner::developer({"/a.app", "A", "com.example.a", "ABCDE12345"}), "ABCDE12345");
}

TEST_F(AppScannerTest, SortsARealisticLibraryToItsAppsAndKeepsOnlyProvenOrphans) {
    const QString apps = system.applications;
    MacApps::app(apps, "Editor.app", MacApps::info("com.example.Editor", "Editor"), Form::binary);
    MacApps::app(apps, "Viewer.app", MacApps::info("com.example.Viewer", "Viewer"));
    MacApps::app(apps, "Night Owl.app", MacApps::info("net.nightowl.NightOwl", "Night Owl"));
    MacApps::app(apps, "Go.app", MacApps::info("dev.golang.go", "Go"));
    MacApps::app(apps, "Drive.app", MacApps::info("com.google.drive", "Drive"));

    using MacApps::libraryFile;
    using MacApps::libraryFolder;
    libraryFile(home, "Preferences", "com.example.Editor.plist");
    libraryFile(home, "Preferences/ByHost", "com.example.Editor.0A1B2C3D-1111-2222-3333-444455556666.plist");
    libraryFolder(home, "Caches", "com.example.Editor", 400'000);
    libraryFolder(home, "Caches", "com.example.editor-helper");
    libraryFolder(home, "Saved Application State", "com.example.Editor.savedState");
    libraryFile(home, "Cookies", "com.example.Editor.binarycookies");
    libraryFolder(home, "HTTPStorages", "com.example.Viewer");
    libraryFolder(home, "Application Support", "Viewer");
    libraryFolder(home, "Containers", "net.nightowl.NightOwl", 90'000);
    libraryFolder(home, "Group Containers", "ABCDE12345.net.nightowl");
    libraryFolder(home, "Application Support", "Night Owl");
    libraryFolder(home, "Application Support", "Night Owl Backups", 300'000);
    libraryFolder(home, "Application Support", "Go");
    libraryFolder(home, "Logs", "Go Build Cache");
    const QString rawName = Paths::fromBytes(QByteArray("Night Owl \xff\xfe old"));  // not UTF-8
    libraryFolder(home, "Application Support", rawName, 1000);
    Files::symlink(home + "/Library/Caches/com.example.Editor", home + "/Library/Caches/com.example.Editor.link");
    // Outside the 13 places nothing is ever a leftover, whatever its name.
    libraryFolder(home, "Other", "com.example.Editor");
    Files::makeDirs(home + "/Documents/Night Owl");
    // Items of apps that are gone.
    libraryFile(home, "Preferences", "net.example.gone.plist");
    libraryFolder(home, "Caches", "net.example.gone", 60'000);
    libraryFolder(home, "Containers", "io.other.tool");
    libraryFolder(home, "Caches", "org.example.cacheonly");       // no evidence that it ever ran
    libraryFile(home, "Preferences", "com.example.OldTool.plist");  // com.example has installed apps
    libraryFile(home, "Preferences", "com.google.Chrome.plist");    // so has com.google
    libraryFile(home, "Preferences", "com.apple.Safari.plist");
    libraryFolder(home, "Group Containers", "group.com.apple.notes");
    libraryFolder(home, "Containers", "net.example.Gone");  // keys keep their case: a group of its own
    libraryFile(home, "Preferences", "org.gnome.Known.plist");      // the platform still knows it
    Files::makeDirs(home + "/.local/share/applications");
    Files::writeText(home + "/.local/share/applications/org.gnome.Known.desktop", "[Desktop Entry]\n");

    const AppScanner::Result result = AppScanner::scan({}, system);

    const InstalledApp& editor = item(result.apps, "Editor");
    EXPECT_EQ(leftoversOf(editor), (QMap<QString, Confidence>{
                                        {"Preferences/com.example.Editor.plist", Confidence::sure},
                                        {"Preferences/ByHost/com.example.Editor.0A1B2C3D-1111-2222-3333-444455556666.plist", Confidence::sure},
                                        {"Caches/com.example.Editor", Confidence::sure},
                                        {"Caches/com.example.editor-helper", Confidence::sure},
                                        {"Saved Application State/com.example.Editor.savedState", Confidence::sure},
                                        {"Cookies/com.example.Editor.binarycookies", Confidence::sure}}));
    EXPECT_EQ(editor.leftovers.first().path, home + "/Library/Caches/com.example.Editor") << "largest first";
    EXPECT_EQ(editor.leftovers.first().bytes, Walker::size(editor.leftovers.first().path, false).bytes);
    EXPECT_EQ(editor.appBytes, Walker::size(editor.path, false).bytes);

    EXPECT_EQ(leftoversOf(item(result.apps, "Viewer")),
              (QMap<QString, Confidence>{{"HTTPStorages/com.example.Viewer", Confidence::sure},
                                         {"Application Support/Viewer", Confidence::likely}}));

    const InstalledApp& owl = item(result.apps, "Night Owl");
    EXPECT_EQ(leftoversOf(owl), (QMap<QString, Confidence>{{"Containers/net.nightowl.NightOwl", Confidence::sure},
                                                            {"Application Support/Night Owl", Confidence::likely},
                                                            {"Application Support/Night Owl Backups", Confidence::likely},
                                                            {"Application Support/" + rawName, Confidence::likely}}))
        << "the team-prefixed group container stays unmatched: an unsigned app has no team";
    EXPECT_EQ(owl.leftovers[0].why, "Bundle ID matches (net.nightowl.NightOwl)") << "sure before likely";
    EXPECT_EQ(owl.leftovers[1].why, "Name contains \"Night Owl\"") << "then the larger likely one";
    EXPECT_EQ(Paths::toBytes(owl.leftovers.last().path), Paths::toBytes(home) + "/Library/Application Support/Night Owl \xff\xfe old")
        << "a name that is not UTF-8 keeps its bytes";

    EXPECT_TRUE(item(result.apps, "Go").leftovers.isEmpty()) << "short names match nothing by name";
    EXPECT_TRUE(item(result.apps, "Drive").leftovers.isEmpty());

    ASSERT_EQ(result.orphans.size(), 3);
    const Orphan& gone = result.orphans[0];
    EXPECT_EQ(gone.name, "net.example.gone");
    ASSERT_EQ(gone.leftovers.size(), 2) << "a preference and a cache folder of one app group together";
    EXPECT_EQ(gone.leftovers[0].path, home + "/Library/Caches/net.example.gone");
    EXPECT_EQ(result.orphans[1].name, "io.other.tool");
    EXPECT_EQ(result.orphans[2].name, "net.example.Gone");

    for (qsizetype i = 1; i < result.apps.size(); ++i)
        EXPECT_GE(result.apps[i - 1].total(), result.apps[i].total()) << "largest total first";
}

TEST_F(AppScannerTest, EqualSizesKeepListingOrderAndACancelledScanReturnsNothing) {
    for (const QString name : {"Delta", "Alpha", "Charlie", "Bravo"})
        MacApps::app(system.applications, name + QString(".app"), MacApps::info("org." + name.toLower() + ".app", name));
    MacApps::app(home + "/Applications", "Aardvark.app", MacApps::info("org.aardvark.app", "Aardvark"));
    MacApps::app(system.applications, "Big.app", MacApps::info("org.big.app", "Big"), Form::xml, 900'000);
    MacApps::libraryFolder(home, "Preferences", "org.gone.app");

    const AppScanner::Result result = AppScanner::scan({}, system);
    EXPECT_EQ(fieldOf(result.apps, &InstalledApp::name), (QStringList{"Big", "Alpha", "Bravo", "Charlie", "Delta", "Aardvark"}));
    EXPECT_EQ(result.orphans.size(), 1);

    std::atomic<int> polls{0};
    EXPECT_EQ(AppScanner::scan([&] { return ++polls > 3; }, system), AppScanner::Result());
    EXPECT_EQ(AppScanner::scan([] { return true; }, system), AppScanner::Result());
}

TEST_F(AppScannerTest, WhatCannotBeReadIsLeftOutAndTheRestIsStillFound) {
    if (!AsUser::canDrop()) GTEST_SKIP() << "needs root to switch to an unprivileged user";
    const QString locked = MacApps::app(system.applications, "Locked.app", MacApps::info("org.locked.app", "Locked"));
    MacApps::app(system.applications, "Open.app", MacApps::info("org.open.app", "Open"));
    MacApps::libraryFolder(home, "Caches", "org.open.app");
    MacApps::libraryFile(home, "Preferences", "org.open.app.plist");
    ::chmod(Paths::toBytes(locked + "/Contents").constData(), 0700);
    ::chmod(Paths::toBytes(home + "/Library/Caches").constData(), 0700);

    const auto seen = AsUser::run([&] {
        QStringList out;
        for (const InstalledApp& a : AppScanner::scan({}, system).apps)
            out.append(a.name + "|" + a.bundleID + "|" + QString::number(a.leftovers.size()));
        return out.join(' ').toUtf8();
    });
    ASSERT_TRUE(seen);
    EXPECT_EQ(*seen, "Open|org.open.app|1 Locked||0") << "listed by its file name, so it can still be uninstalled";
}
