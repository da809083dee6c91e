#include <gtest/gtest.h>

#include "apps/app_removal.h"
#include "apps/app_scanner.h"
#include "apps/linux_login_items.h"
#include "apps/login_items.h"
#include "core/paths.h"
#include "core/record_json.h"
#include "measure/walker.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/lists.h"
#include "support/mac_apps.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

using LinuxFixtures::ScopedEnv;

namespace {

// A Linux desktop's home: a Flatpak of the user's and one of the system's, two AppImages, what
// they left in ~/.var/app and the XDG folders, the data of apps that are gone, a user's own
// folders, an autostart entry and a user service; fake flatpak and dpkg on a PATH of its own.
struct LinuxHome {
    QString home, bin, obsidian, obsidianEntry, obsidianIcon, nvim;
    SystemFolders system;

    LinuxHome() {
        Sandbox::clearHome();
        home = Sandbox::home();
        system = SystemFolders::under(Sandbox::scratch("system"));
        bin = Sandbox::scratch("bin");
        LinuxFixtures::script(bin, "flatpak", "[ \"$1\" = list ] && echo org.example.Listed\nexit 0\n");
        LinuxFixtures::script(bin, "dpkg", "for p in \"$@\"; do [ \"$p\" = '" + bin.toUtf8() + "/owl-agent' ] && "
                                           "echo \"owl-tools: $p\"; done\nexit 1\n");
        LinuxFixtures::script(bin, "owl-agent", "true\n");

        LinuxFixtures::flatpak(home + "/.local/share/flatpak",
                               {"org.example.NightOwl", "Night Owl", "nightowl", "Night Owl Studio", "night-owl-main", 300'000});
        LinuxFixtures::flatpak(system.flatpak, {"com.example.Shared", "Shared Board", "shared-board", "", "", 100'000});
        obsidian = LinuxFixtures::elf(home + "/Applications/Obsidian-1.4.16.AppImage", 2, 200'000);
        obsidianEntry = LinuxFixtures::desktopEntry(
            home + "/.local/share/applications/appimagekit_0f1e2d-md.obsidian.Obsidian.desktop",
            {"Type=Application", "Name=Obsidian", "Exec=\"" + obsidian + "\" %U", "StartupWMClass=obsidian",
             "Icon=appimagekit_0f1e2d-obsidian"});
        obsidianIcon = LinuxFixtures::text(home + "/.local/share/icons/hicolor/256x256/apps/appimagekit_0f1e2d-obsidian.png", "png");
        nvim = LinuxFixtures::elf(home + "/.local/bin/nvim", 2, 50'000);

        const auto folder = [&](const QString& relative, qint64 bytes = 20'000) {
            Files::makeDirs(home + "/" + relative);
            Files::write(home + "/" + relative + "/data", bytes);
        };
        folder(".var/app/org.example.NightOwl/config");
        folder(".var/app/org.example.NightOwl/data", 60'000);
        folder(".var/app/com.example.Shared/cache");
        folder(".config/nightowl");                  // its program
        folder(".cache/night-owl-main", 40'000);      // its window class, as Electron names its caches
        folder(".config/obsidian");                  // an Electron app's settings
        folder(".config/md.obsidian.Obsidian");
        folder(".local/share/nvim");
        folder(".cache/nvim");
        folder(".config/Unrelated Tool");
        folder("Documents/Night Owl");               // the user's own folder
        folder(".local/share/applications/nvim");    // the desktop's, whatever its name
        folder(".var/app/org.gone.Game/data", 80'000);
        folder(".var/app/org.gone.CacheOnly/cache");
        folder(".var/app/org.example.Listed/config");  // flatpak still lists it
        LinuxFixtures::desktopEntry(home + "/.config/autostart/org.example.NightOwl.desktop",
                                    {"Type=Application", "Name=Night Owl", "X-Flatpak=org.example.NightOwl",
                                     "Exec=flatpak run org.example.NightOwl --background"});
        LinuxFixtures::text(home + "/.config/systemd/user/owl-agent.service",
                            "[Unit]\nDescription=Owl agent\n[Service]\nExecStart=owl-agent\n");
    }

    QByteArray systemRoot() const { return "QUARLE_SYSTEM_ROOT=" + Paths::toBytes(Paths::parentOf(system.applications)); }
    QByteArray path() const { return "PATH=" + bin.toUtf8() + ":/usr/bin:/bin"; }
};

const InstalledApp& item(const QList<InstalledApp>& apps, const QString& name) { return itemBy(apps, &InstalledApp::name, name); }

// Leftover path below the home → "confidence: why".
QMap<QString, QString> leftoversOf(const InstalledApp& app) {
    QMap<QString, QString> out;
    for (const Leftover& l : app.leftovers)
        out.insert(l.path.mid(Sandbox::home().size() + 1), rawValue(l.confidence) + ": " + l.why);
    return out;
}

}  // namespace

TEST(LinuxHome, FlatpaksAndAppImagesAreListedWithWhatTheyLeftAndTheGoneAppsData) {
    const LinuxHome f;
    const ScopedEnv path("PATH", f.bin.toUtf8() + ":/usr/bin:/bin");
    const AppScanner::Result result = AppScanner::scan({}, f.system);

    EXPECT_EQ(fieldOf(result.apps, &InstalledApp::name), (QStringList{"Night Owl", "Obsidian", "Shared Board", "nvim"})) << "largest first";

    const InstalledApp& owl = item(result.apps, "Night Owl");
    EXPECT_EQ(owl.appBytes, Walker::size(owl.path, false).bytes);
    EXPECT_EQ(leftoversOf(owl), (QMap<QString, QString>{
                                    {".var/app/org.example.NightOwl", "sure: Bundle ID matches (org.example.NightOwl)"},
                                    {".config/nightowl", "likely: Named after its program (nightowl)"},
                                    {".cache/night-owl-main", "likely: Named after its window class (night-owl-main)"}}))
        << "~/Documents/Night Owl is the user's own";
    EXPECT_EQ(owl.leftovers[0].bytes, Walker::size(f.home + "/.var/app/org.example.NightOwl", false).bytes);

    EXPECT_EQ(leftoversOf(item(result.apps, "Obsidian")),
              (QMap<QString, QString>{{".config/obsidian", "likely: Named after the app"},
                                      {".config/md.obsidian.Obsidian", "likely: Bundle ID matches (md.obsidian.Obsidian)"}}));
    EXPECT_EQ(leftoversOf(item(result.apps, "Shared Board")),
              (QMap<QString, QString>{{".var/app/com.example.Shared", "sure: Bundle ID matches (com.example.Shared)"}}));
    EXPECT_EQ(leftoversOf(item(result.apps, "nvim")),
              (QMap<QString, QString>{{".local/share/nvim", "likely: Named after the app"},
                                      {".cache/nvim", "likely: Named after the app"}}));

    ASSERT_EQ(result.orphans.size(), 1) << "only cache, or still listed by flatpak: not an orphan";
    EXPECT_EQ(result.orphans[0], (Orphan{"org.gone.Game", "org.gone.Game",
                                         {{f.home + "/.var/app/org.gone.Game", Walker::size(f.home + "/.var/app/org.gone.Game", false).bytes,
                                           "Flatpak data of an app that isn't installed", Confidence::sure}}}));
}

TEST(LinuxHome, EachKindOfAppIsRemovedItsOwnWay) {
    const LinuxHome f;
    const AppScanner::Result result = AppScanner::scan({}, f.system);
    using AppRemoval::Origin;

    // Flatpaks and AppImages removed through the model: model/linux_uninstall_test.
    EXPECT_EQ(AppRemoval::origin(item(result.apps, "Night Owl"), f.system), Origin::userFlatpak);
    EXPECT_EQ(AppRemoval::origin(item(result.apps, "Shared Board"), f.system), Origin::systemFlatpak);
    EXPECT_EQ(AppRemoval::origin(item(result.apps, "Obsidian"), f.system), Origin::appImage);
    EXPECT_EQ(AppRemoval::plan(item(result.apps, "nvim"), f.system), (AppRemoval::Plan{Removal::trash(), {}, {}}));

    const QString bundle = MacApps::app(f.system.applications, "Editor.app", MacApps::info("com.example.Editor", "Editor"));
    const InstalledApp editor{"Editor", "com.example.Editor", bundle, 0, std::nullopt, "com.example", {}};
    EXPECT_EQ(AppRemoval::origin(editor, f.system), Origin::bundle);
    EXPECT_EQ(AppRemoval::plan(editor, f.system), (AppRemoval::Plan{Removal::trash(), {}, {}}));
    // The path decides, whatever the record's identifier says: a deployment is never trashed.
    const InstalledApp odd{"Odd", "org.other.App", f.home + "/.local/share/flatpak/app/org.example.NightOwl", 0, std::nullopt, "", {}};
    EXPECT_EQ(AppRemoval::plan(odd, f.system).removal,
              Removal::command({"flatpak", "uninstall", "--user", "-y", "org.example.NightOwl"}));
}

TEST(LinuxHome, AnAppImagesIconsGoOnlyWhenNoOtherEntryUsesThem) {
    const LinuxHome f;
    const QString entries = f.home + "/.local/share/applications";
    const QString icons = f.home + "/.local/share/icons";
    // A second entry for the same AppImage with an icon by path, and one whose icon another app shares.
    const QString second = LinuxFixtures::desktopEntry(entries + "/obsidian-vault.desktop",
                                                       {"Name=Vault", "Exec=" + f.obsidian + " --vault", "Icon=" + icons + "/../icons/vault.svg"});
    const QString vault = LinuxFixtures::text(icons + "/vault.svg", "svg");
    LinuxFixtures::desktopEntry(entries + "/obsidian-shared.desktop", {"Name=Shared", "TryExec=" + f.obsidian, "Icon=notes"});
    LinuxFixtures::desktopEntry(entries + "/notes.desktop", {"Name=Notes", "Exec=/usr/bin/notes", "Icon=notes"});
    LinuxFixtures::text(icons + "/hicolor/48x48/apps/notes.png", "png");
    LinuxFixtures::desktopEntry(entries + "/obsidian-system-icon.desktop", {"Name=Sys", "Exec=" + f.obsidian, "Icon=/usr/share/icons/x.png"});
    LinuxFixtures::text(icons + "/hicolor/scalable/apps/appimagekit_0f1e2d-obsidian.svg", "svg");
    LinuxFixtures::text(icons + "/hicolor/48x48/apps/appimagekit_0f1e2d-obsidian-other.png", "png");

    const InstalledApp obsidian{"Obsidian", "md.obsidian.Obsidian", f.obsidian, 0, std::nullopt, "", {}};
    EXPECT_EQ(AppRemoval::plan(obsidian, f.system).alsoTrash,
              (QStringList{f.obsidianEntry, entries + "/obsidian-shared.desktop", entries + "/obsidian-system-icon.desktop",
                           second, f.obsidianIcon, icons + "/hicolor/scalable/apps/appimagekit_0f1e2d-obsidian.svg", vault}))
        << "entries, then the icons only they use, found by name in the user's icons or given by a path inside them";
}

TEST(LinuxHome, TheVerbsShowTheLinuxRecords) {
    const LinuxHome f;
    const QList<QByteArray> env{f.systemRoot(), f.path()};

    const Ran apps = runQuarle({"apps"}, env);
    EXPECT_EQ(apps.status, 0) << apps.err.constData();
    const QString text = QString::fromUtf8(apps.out);
    EXPECT_TRUE(text.contains("  ~/.local/share/flatpak/app/org.example.NightOwl\n") &&
                text.contains("  ~/Applications/Obsidian-1.4.16.AppImage\n") && text.contains("4 apps, "))
        << text.toStdString();

    const QString orphans = QString::fromUtf8(runQuarle({"orphans"}, env).out);
    EXPECT_TRUE(orphans.contains("  ~/.var/app/org.gone.Game — Flatpak data of an app that isn't installed\n") &&
                orphans.contains("Leftovers of 1 app that are gone")) << orphans.toStdString();
    const QString items = QString::fromUtf8(runQuarle({"login-items"}, env).out);
    EXPECT_TRUE(items.contains("Night Owl (org.example.NightOwl)\n") && items.contains("package owl-tools\n") &&
                items.endsWith("\n2 login items.\n")) << items.toStdString();
}
