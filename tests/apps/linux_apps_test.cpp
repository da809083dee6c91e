#include <gtest/gtest.h>

#include "apps/app_images.h"
#include "apps/flatpak_apps.h"
#include "apps/leftover_sweep.h"
#include "apps/leftovers.h"
#include "apps/linux_app.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

using Leftovers::AppIdentity;
using Leftovers::Match;
using LinuxFixtures::Flatpak;

namespace {

const AppIdentity owl{"Night Owl", "org.example.NightOwl", "", {{"nightowl", "Named after its program (nightowl)"},
                                                                {"night-owl-main", "Named after its window class (night-owl-main)"}}};
// An AppImage without an app id: only its names can match.
const AppIdentity obsidian{"Obsidian", "", "", {{"Obsidian", "Named after the app"}}};

std::optional<Match> in(const QString& place, const QString& name, const AppIdentity& app) {
    return Leftovers::match(name, place, app, false);
}

Walker::Entry entry(const QString& name, bool isDir = true) {
    Walker::Entry e;
    e.name = name;
    e.isDir = isDir;
    e.isFile = !isDir;
    return e;
}

}  // namespace

TEST(LinuxLeftoverRules, AFlatpakFolderIsSureOnlyByItsExactIdAndNothingInTheDesktopFoldersIsSure) {
    EXPECT_EQ(in(".var/app", "org.example.NightOwl", owl), (Match{Confidence::sure, "Bundle ID matches (org.example.NightOwl)", 1020}));
    EXPECT_EQ(in(".var/app", "org.example.nightowl", owl)->confidence, Confidence::sure) << "compared without case";
    EXPECT_EQ(in(".var/app", "org.example.NightOwl.Devel", owl), std::nullopt) << "another app's folder";
    EXPECT_EQ(in(".var/app", "org.example.Other", owl), std::nullopt) << "a maker's other app";
    EXPECT_EQ(in(".var/app", "nightowl", owl), std::nullopt);

    EXPECT_EQ(in(".config", "org.example.NightOwl", owl), (Match{Confidence::likely, "Bundle ID matches (org.example.NightOwl)", 1020}))
        << "a native build of the same app would write there too";
    EXPECT_EQ(in(".local/share", "org.example.NightOwl-backup", owl)->confidence, Confidence::likely);
    EXPECT_EQ(in(".cache", "org.example.tools", owl), (Match{Confidence::likely, "Same developer's ID (org.example)", 511}));
    EXPECT_EQ(in(".config", "Night Owl", owl), (Match{Confidence::likely, "Named after the app", 316}));
    EXPECT_EQ(in(".cache", "nightowl-updater", owl), (Match{Confidence::likely, "Name contains \"nightowl\"", 115}));
    EXPECT_EQ(in(".cache", "night-owl-main", owl), (Match{Confidence::likely, "Named after its window class (night-owl-main)", 324}))
        << "the whole window class beats containing the app's name";
    EXPECT_EQ(in(".config", "Obsidian Backups", obsidian), (Match{Confidence::likely, "Name contains \"Obsidian\"", 115}));
    EXPECT_EQ(in(".var/app", "Obsidian", obsidian), std::nullopt);
    EXPECT_EQ(in(".config", "Go", AppIdentity{"Go", "", "", {{"Go", "Named after the app"}}}), std::nullopt)
        << "short names never match, whatever kind of name";

    // Wherever an entry only carries a name, the match is never sure.
    for (const QString& place : Leftovers::places + Leftovers::desktopPlaces + QStringList{Leftovers::flatpakPlace})
        for (const char* name : {"Night Owl", "nightowl", "night-owl-main", "obsidian"})
            for (const AppIdentity& app : {owl, obsidian}) {
                if (const auto m = in(place, name, app)) {
                    EXPECT_EQ(m->confidence, Confidence::likely) << name;
                }
            }
}

TEST(LinuxLeftoverSweep, DesktopFoldersGiveNoOrphansAndFlatpakFoldersNeedDataOrConfig) {
    Sandbox::clearHome();
    const QString var = Sandbox::home() + "/.var/app";
    Files::makeDirs(var + "/org.gone.Used/data/saves");
    Files::makeDirs(var + "/org.gone.Configured/config");
    Files::write(var + "/org.gone.Configured/config/settings.ini", 100);
    Files::makeDirs(var + "/org.gone.CacheOnly/cache/fontconfig");
    Files::makeDirs(var + "/org.gone.Empty/data");
    Files::makeDirs(var + "/org.gone.Empty/config");

    const QList<Leftovers::PreparedApp> apps =
        Leftovers::prepare({AppIdentity{"Icons", "org.example.Icons", "", {}}, owl}, {});
    Leftovers::Sweep sweep;
    for (const char* name : {"org.gone.CacheOnly", "org.gone.Configured", "org.gone.Empty", "org.gone.Used",
                                "org.example.NightOwl"})
        Leftovers::take(entry(name), ".var/app", var, apps, sweep);
    Leftovers::take(entry("org.gone.File", false), ".var/app", var, apps, sweep);
    for (const char* name : {"icons", "applications", "flatpak", "Trash", "autostart", "org.gone.Other"})
        Leftovers::take(entry(name), ".local/share", Sandbox::home() + "/.local/share", apps, sweep);

    EXPECT_TRUE(sweep.byApp.value(0).isEmpty()) << "the desktop's shared icons folder is nobody's, even an app called Icons";
    ASSERT_EQ(sweep.byApp.value(1).size(), 1);
    EXPECT_EQ(sweep.byApp.value(1)[0], (Leftover{var + "/org.example.NightOwl", -1, "Bundle ID matches (org.example.NightOwl)",
                                                 Confidence::sure}));

    QStringList groups;
    for (const Leftovers::OrphanGroup& g : sweep.orphans) {
        groups.append(g.key + (g.ranHere ? "+" : "-"));
        EXPECT_TRUE(g.flatpak);
        EXPECT_EQ(g.items, (QList<Leftover>{{var + "/" + g.key, -1, Leftovers::flatpakOrphanWhy, Confidence::sure}}));
    }
    EXPECT_EQ(groups, (QStringList{"org.gone.CacheOnly-", "org.gone.Configured+", "org.gone.Empty-", "org.gone.Used+"}))
        << "no orphans from the desktop folders, and none from a file";

    // A Flatpak folder is always one app's: a maker with an installed app does not hide it.
    const QSet<QString> vendors = Leftovers::installedVendors({AppIdentity{"Calculator", "org.gone.Calculator", "", {}}});
    const auto known = [](const QString& id) { return id == "org.gone.Used"; };
    QStringList kept;
    for (const Orphan& o : Leftovers::keptOrphans(sweep.orphans, vendors, known)) kept.append(o.name);
    EXPECT_EQ(kept, (QStringList{"org.gone.Configured"}));
}

TEST(FlatpakApps, ReadsDeployedAppsOfBothInstallationsFromTheirFiles) {
    Sandbox::clearHome();
    const SystemFolders system = SystemFolders::under(Sandbox::scratch("system"));
    const QString user = FlatpakApps::userInstallation();
    EXPECT_EQ(user, Sandbox::home() + "/.local/share/flatpak");

    const QString owlPath = LinuxFixtures::flatpak(user, {"org.example.NightOwl", "Night Owl", "nightowl", "Night Owl Studio", "night-owl-main"});
    LinuxFixtures::flatpak(user, {"org.example.Bare", "", "electron", "", ""});  // no desktop entry, a generic program
    const QString damaged = LinuxFixtures::flatpak(user, {"org.example.Damaged", "Damaged", "damaged", "", ""});
    LinuxFixtures::text(damaged + "/current/active/metadata", "[Application\nname=x\n");
    LinuxFixtures::text(damaged + "/current/active/files/share/metainfo/org.example.Damaged.metainfo.xml", "<component><developer>");
    // Not deployed: no "active" commit; a hidden folder; a file.
    Files::makeDirs(user + "/app/org.example.Removed/x86_64/stable");
    Files::symlink("x86_64/stable", user + "/app/org.example.Removed/current");
    Files::makeDirs(user + "/app/.removed/org.example.Old/current/active");
    LinuxFixtures::text(user + "/app/org.example.File", "x");
    LinuxFixtures::flatpak(system.flatpak, {"com.example.Shared", "Shared", "shared", "", ""});

    const QList<LinuxApp> apps = FlatpakApps::list(system);
    ASSERT_EQ(apps.size(), 4);
    EXPECT_EQ(apps[0], (LinuxApp{LinuxApp::Origin::userFlatpak, user + "/app/org.example.Bare", "org.example.Bare",
                                 "org.example.Bare", "org.example", {}}))
        << "the id stands for a missing name, the vendor for a missing developer; \"electron\" says nothing";
    EXPECT_EQ(apps[1], (LinuxApp{LinuxApp::Origin::userFlatpak, damaged, "Damaged", "org.example.Damaged", "org.example", {}}))
        << "damaged metadata and AppStream data only leave their parts out";
    EXPECT_EQ(apps[2], (LinuxApp{LinuxApp::Origin::userFlatpak, owlPath, "Night Owl", "org.example.NightOwl", "Night Owl Studio",
                                 {{"nightowl", "Named after its program (nightowl)"},
                                  {"night-owl-main", "Named after its window class (night-owl-main)"}}}));
    EXPECT_EQ(apps[3].origin, LinuxApp::Origin::systemFlatpak);
    EXPECT_EQ(apps[3].path, system.flatpak + "/app/com.example.Shared");
    EXPECT_EQ(apps[2].record(), (InstalledApp{"Night Owl", "org.example.NightOwl", owlPath, 0, std::nullopt, "Night Owl Studio", {}}));

    EXPECT_EQ(FlatpakApps::installedIDs(system),
              (QSet<QString>{"org.example.NightOwl", "org.example.Bare", "org.example.Damaged", "com.example.Shared"}));
    EXPECT_TRUE(FlatpakApps::list(SystemFolders::under(Sandbox::scratch("none"))).size() == 3) << "a missing installation is empty";
}

TEST(FlatpakApps, TheDeveloperIsTheUntranslatedOneOfTheComponentItself) {
    using FlatpakApps::appStreamDeveloper;
    EXPECT_EQ(appStreamDeveloper("<component><developer_name xml:lang=\"de\">Eule</developer_name>"
                                 "<developer_name> Night  Owl\nStudio </developer_name></component>"),
              "Night Owl Studio");
    EXPECT_EQ(appStreamDeveloper("<component><developer_name>Old</developer_name><developer id=\"x\">"
                                 "<name xml:lang=\"fr\">Hibou</name><name>New</name></developer></component>"),
              "New")
        << "AppStream 1.0's developer element wins";
    EXPECT_EQ(appStreamDeveloper("<components><component><developer_name>Nested</developer_name></component></components>"), "");
    EXPECT_EQ(appStreamDeveloper("<component><releases><release><developer><name>Release</name></developer></release>"
                                 "</releases></component>"),
              "");
    EXPECT_EQ(appStreamDeveloper("<component><developer_name>Cut"), "");
    EXPECT_EQ(appStreamDeveloper(""), "");
}

TEST(AppImages, FoundByTheirMagicOrTheirNameAndNamedByTheirDesktopEntry) {
    EXPECT_TRUE(AppImages::hasMagic(QByteArray("\x7f" "ELF\2\1\1\0AI\2", 11)));
    EXPECT_TRUE(AppImages::hasMagic(QByteArray("\x7f" "ELF\2\1\1\0AI\1xxxx", 15)));
    EXPECT_FALSE(AppImages::hasMagic(QByteArray("\x7f" "ELF\2\1\1\0AI\3", 11)));
    EXPECT_FALSE(AppImages::hasMagic(QByteArray("#!/bin/sAI\2", 11)));
    EXPECT_FALSE(AppImages::hasMagic(QByteArray("\x7f" "ELF\2\1\1\0AI", 10)));

    const QList<std::pair<QString, QString>> names{
        {"Obsidian-1.4.16.AppImage", "Obsidian"}, {"Night-Owl-2.3.1-x86_64.AppImage", "Night-Owl"},
        {"krita-5.2.2-x86_64.appimage", "krita"}, {"nvim.appimage", "nvim"}, {"Tool_v2_amd64.AppImage", "Tool"},
        {"2048-game.AppImage", "2048-game"},      {"Foo-x86_64.AppImage", "Foo"}, {".AppImage", ".AppImage"},
        {"nvim", "nvim"}};
    for (const auto& [file, name] : names) EXPECT_EQ(AppImages::nameFromFile(file), name) << file.toStdString();

    EXPECT_EQ(AppImages::idFromEntry("appimagekit_0f1e2d3c4b5a-md.obsidian.Obsidian"), "md.obsidian.Obsidian");
    EXPECT_EQ(AppImages::idFromEntry("appimagekit_0f1e2d3c4b5a-obsidian"), "");
    EXPECT_EQ(AppImages::idFromEntry("org.example.Tool"), "org.example.Tool");
    EXPECT_EQ(AppImages::idFromEntry("org.example.2Tool"), "") << "an element may not start with a digit";
    EXPECT_EQ(AppImages::idFromEntry("Obsidian-1.4.16"), "");

    Sandbox::clearHome();
    const QString apps = Sandbox::home() + "/Applications", bin = Sandbox::home() + "/.local/bin";
    const QString entries = Sandbox::home() + "/.local/share/applications";
    const QString obsidian = LinuxFixtures::elf(apps + "/Obsidian-1.4.16.AppImage");
    LinuxFixtures::desktopEntry(entries + "/appimagekit_0f1e2d-md.obsidian.Obsidian.desktop",
                                {"Type=Application", "Name=Obsidian Notes", "Exec=\"" + obsidian + "\" %U",
                                 "StartupWMClass=obsidian", "Icon=appimagekit_0f1e2d-obsidian"});
    LinuxFixtures::desktopEntry(entries + "/other.desktop", {"Name=Other", "Exec=/usr/bin/other"});
    LinuxFixtures::text(entries + "/damaged.desktop", "[Desktop Entry\n");
    const QString tool = LinuxFixtures::text(apps + "/Tool.appimage", "not even ELF: the name says it");
    Files::makeDirs(apps + "/Editor.app/Contents");
    Files::makeDirs(apps + "/Folder.AppImage");
    const QString nvim = LinuxFixtures::elf(bin + "/nvim", 2);
    LinuxFixtures::elf(bin + "/plain", 0);
    LinuxFixtures::script(bin, "script.sh", "true\n");
    Files::symlink(obsidian, bin + "/obsidian");

    const QList<LinuxApp> found = AppImages::list();
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found[0], (LinuxApp{LinuxApp::Origin::appImage, obsidian, "Obsidian Notes", "md.obsidian.Obsidian", "md.obsidian",
                                  {{"Obsidian", "Named after its file (Obsidian)"},
                                   {"obsidian", "Named after its window class (obsidian)"}}}));
    EXPECT_EQ(found[1], (LinuxApp{LinuxApp::Origin::appImage, tool, "Tool", "", "", {{"Tool", "Named after the app"}}}));
    EXPECT_EQ(found[2], (LinuxApp{LinuxApp::Origin::appImage, nvim, "nvim", "", "", {{"nvim", "Named after the app"}}}));
    EXPECT_EQ(AppImages::userEntries().size(), 2) << "the damaged entry is left out";
}
