#include <gtest/gtest.h>

#include "apps/autostart.h"
#include "apps/linux_login_items.h"
#include "apps/login_items.h"
#include "apps/user_units.h"
#include "core/paths.h"
#include "platform/key_file.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/lists.h"
#include "support/sandbox.h"

using Kind = LoginItem::Kind;
using LinuxFixtures::ScopedEnv;

namespace {

const LoginItem* find(const QList<LoginItem>& items, const QString& id) { return findBy(items, &LoginItem::identifier, id); }
const LoginItem& item(const QList<LoginItem>& items, const QString& id) { return itemBy(items, &LoginItem::identifier, id); }

// A home and a system with autostart entries and user services of every kind, fake tools on PATH.
class LinuxLoginItemsTest : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        home = Sandbox::home();
        system = SystemFolders::under(Sandbox::scratch("system"));
        bin = Sandbox::scratch("bin");
        autostart = home + "/.config/autostart";
        units = home + "/.config/systemd/user";
        using LinuxFixtures::desktopEntry;
        using LinuxFixtures::text;

        LinuxFixtures::script(bin, "owl-agent", "true\n");
        LinuxFixtures::script(bin, "flatpak", "[ \"$1\" = list ] && echo org.example.Listed\nexit 0\n");
        // dpkg knows the agent, and records each call.
        LinuxFixtures::script(bin, "dpkg", "echo \"$*\" >> '" + bin.toUtf8() + "/dpkg.calls'\n"
                                           "for p in \"$@\"; do [ \"$p\" = '" + bin.toUtf8() + "/owl-agent' ] && "
                                           "echo \"owl-tools: $p\"; done\nexit 1\n");
        LinuxFixtures::flatpak(home + "/.local/share/flatpak", {"org.example.NightOwl", "Night Owl", "nightowl", "Night Owl Studio", ""});
        appImage = LinuxFixtures::elf(home + "/Applications/Obsidian-1.4.16.AppImage");
        desktopEntry(home + "/.local/share/applications/obsidian.desktop", {"Name=Obsidian", "Exec=" + appImage + " %U"});

        // Autostart: every user's entries, and this user's, some replacing the system's.
        desktopEntry(system.autostart + "/plain.desktop", {"Type=Application", "Name=Plain", "Exec=owl-agent --tray"});
        desktopEntry(system.autostart + "/switched-off.desktop", {"Type=Application", "Name=Switched", "Exec=/opt/switched"});
        desktopEntry(autostart + "/switched-off.desktop", {"Hidden=true"});
        desktopEntry(system.autostart + "/switched-on.desktop",
                     {"Type=Application", "Name=Was off", "Exec=owl-agent", "X-GNOME-Autostart-enabled=false"});
        desktopEntry(autostart + "/switched-on.desktop", {"Type=Application", "Name=Now on", "Exec=owl-agent"});
        text(system.autostart + "/damaged.desktop", "[Desktop Entry]\nName\n");
        desktopEntry(system.autostart + "/shadowed.desktop", {"Type=Application", "Name=Shadowed", "Exec=owl-agent"});
        text(autostart + "/shadowed.desktop", "Name=before any group\n");
        desktopEntry(system.autostart + "/link.desktop", {"Type=Link", "URL=https://example.org"});
        desktopEntry(autostart + "/org.example.NightOwl.desktop",
                     {"Type=Application", "Name=Night Owl (background)", "X-Flatpak=org.example.NightOwl",
                      "Exec=flatpak run --command=nightowl org.example.NightOwl --background"});
        desktopEntry(autostart + "/org.gone.Game.desktop",
                     {"Type=Application", "Name=Game", "Exec=flatpak run org.gone.Game//beta"});
        desktopEntry(autostart + "/listed.desktop", {"Type=Application", "Exec=flatpak run org.example.Listed"});
        desktopEntry(autostart + "/obsidian.desktop", {"Type=Application", "Name=Notes", "Exec=env A=1 \"" + appImage + "\""});
        desktopEntry(autostart + "/gone.desktop", {"Type=Application", "Name=Gone", "Exec=/opt/gone/tool --start"});
        desktopEntry(autostart + "/tryexec.desktop", {"Type=Application", "Name=Try", "Exec=sh -c true", "TryExec=no-such-quarle-tool"});
        desktopEntry(autostart + "/relative.desktop", {"Type=Application", "Name=Relative", "Exec=bin/tool"});

        // User services.
        text(units + "/backup.service", "[Unit]\nDescription=Home backup\n[Service]\nExecStart=-%h/bin/backup \\\n  --all\n"
                                        "[Install]\nWantedBy=default.target\n");
        Files::makeDirs(home + "/bin");
        Files::write(home + "/bin/backup", 100);
        Files::makeDirs(units + "/default.target.wants");
        Files::symlink(units + "/backup.service", units + "/default.target.wants/backup.service");
        text(units + "/sync@.service", "[Service]\nExecStart=!!@" + bin.toUtf8() + "/owl-agent owl-sync %i\n");
        Files::symlink(units + "/sync@.service", units + "/default.target.wants/sync@laptop.service");
        text(units + "/gone.service", "[Unit]\nDescription=Gone daemon\n[Service]\nExecStart=/opt/gone/daemon\n");
        text(units + "/runtime.service", "[Service]\nExecStart=%t/helper\n");
        text(units + "/reset.service", "[Service]\nExecStart=/opt/first\nExecStart=\nExecStart=owl-agent --second\n");
        text(units + "/damaged.service", "[Service]\nExecStart=/bin/true\nthis is no line of a unit\n");
        text(home + "/.local/share/systemd/user/owl.service",
             "[Unit]\nDescription=Owl sync\n[Service]\nExecStart=/usr/bin/flatpak run org.example.NightOwl --sync\n");
        text(system.userUnitsVendor + "/vendor.service", "[Unit]\nDescription=Vendor agent\n[Service]\nExecStart=owl-agent\n"
                                                        "[Install]\nWantedBy=default.target\n");
        text(system.userUnitsVendor + "/static.service", "[Service]\nExecStart=owl-agent\n");
        text(system.userUnitsVendor + "/wanted-static.service", "[Service]\nExecStart=owl-agent\n");
        Files::makeDirs(system.userUnitsAdmin + "/default.target.wants");
        Files::symlink(system.userUnitsVendor + "/wanted-static.service",
                       system.userUnitsAdmin + "/default.target.wants/wanted-static.service");
        text(system.userUnitsVendor + "/shadow.service", "[Unit]\nDescription=Vendor's\n[Service]\nExecStart=owl-agent\n"
                                                        "[Install]\nWantedBy=default.target\n");
        text(units + "/shadow.service", "[Unit]\nDescription=Mine\n[Service]\nExecStart=owl-agent\n");
        text(system.userUnitsVendor + "/masked.service", "[Unit]\nDescription=Masked\n[Service]\nExecStart=owl-agent\n"
                                                        "[Install]\nWantedBy=default.target\n");
        Files::symlink("/dev/null", units + "/masked.service");
        Files::symlink(system.userUnitsVendor + "/masked.service", units + "/default.target.wants/masked.service");
        text(units + "/not-a-service.timer", "[Timer]\nOnCalendar=daily\n");
    }

    QList<LoginItem> list() {
        const ScopedEnv path("PATH", bin.toUtf8() + ":/usr/bin:/bin");
        return LinuxLoginItems::list(system);
    }

    QString home, bin, autostart, units, appImage;
    SystemFolders system;
};

}  // namespace

TEST_F(LinuxLoginItemsTest, AutostartEntriesWithTheUsersReplacingTheSystems) {
    const QList<LoginItem> items = list();

    const LoginItem& plain = item(items, "plain");
    EXPECT_EQ(plain, (LoginItem{"Plain", "plain", "", Kind::loginItem, true, system.autostart + "/plain.desktop", true,
                                 "owl-tools", false, true}))
        << "a bare program is found in PATH; its package is installed, so is what it belongs to";

    const LoginItem& off = item(items, "switched-off");
    EXPECT_FALSE(off.enabled);
    EXPECT_FALSE(off.needsAdmin) << "the user's own file decides";
    EXPECT_EQ(off.path, autostart + "/switched-off.desktop");
    EXPECT_EQ(off.name, "Switched") << "taken from the entry it replaces";
    EXPECT_TRUE(off.missing) << "the replaced entry's program is gone";

    const LoginItem& on = item(items, "switched-on");
    EXPECT_TRUE(on.enabled);
    EXPECT_EQ(on.name, "Now on");

    EXPECT_FALSE(find(items, "damaged")) << "a damaged entry is skipped";
    EXPECT_FALSE(find(items, "shadowed")) << "a damaged user file still hides the system's entry, as on the desktop";
    EXPECT_FALSE(find(items, "link"));

    const LoginItem& owl = item(items, "org.example.NightOwl");
    EXPECT_EQ(owl.name, "Night Owl");
    EXPECT_EQ(owl.developer, "Night Owl Studio");
    EXPECT_TRUE(owl.appStillThere);
    EXPECT_FALSE(owl.missing);

    const LoginItem& game = item(items, "org.gone.Game");
    EXPECT_FALSE(game.appStillThere) << "flatpak is installed, the app it runs is not";
    EXPECT_EQ(game.developer, "org.gone") << "the maker of an entry named like an app id";
    EXPECT_TRUE(item(items, "listed").appStillThere) << "flatpak itself lists it";
    EXPECT_EQ(item(items, "listed").name, "listed");

    const LoginItem& notes = item(items, "obsidian");
    EXPECT_EQ(notes.name, "Obsidian") << "the AppImage it starts";
    EXPECT_TRUE(notes.appStillThere);
    EXPECT_EQ(notes.signer, LinuxLoginItems::notPackaged);

    EXPECT_TRUE(item(items, "gone").missing);
    EXPECT_FALSE(item(items, "gone").appStillThere);
    EXPECT_TRUE(item(items, "tryexec").missing) << "its TryExec is gone";
    EXPECT_FALSE(item(items, "relative").missing) << "a path relative to an unknown folder is not judged";
}

TEST_F(LinuxLoginItemsTest, UserServicesEnabledByWantsLinksWithTheirPrograms) {
    const QList<LoginItem> items = list();

    const LoginItem& backup = item(items, "backup.service");
    EXPECT_EQ(backup, (LoginItem{"Home backup", "backup.service", "", Kind::agent, true, units + "/backup.service", false,
                                  LinuxLoginItems::notPackaged, false, false}))
        << "%h is the home folder, the \"-\" prefix is no part of the program";
    EXPECT_EQ(backup.scope(), "This user");

    const LoginItem& sync = item(items, "sync@.service");
    EXPECT_TRUE(sync.enabled) << "an enabled instance enables its template";
    EXPECT_EQ(sync.signer, "owl-tools") << "after the \"!!@\" prefixes comes the program";
    EXPECT_EQ(sync.name, "sync@.service");

    EXPECT_TRUE(item(items, "gone.service").missing);
    EXPECT_FALSE(item(items, "gone.service").enabled);
    EXPECT_FALSE(item(items, "runtime.service").missing) << "%t is only known to the service manager";
    EXPECT_EQ(item(items, "reset.service").signer, "owl-tools") << "an empty ExecStart starts the list again";
    EXPECT_FALSE(find(items, "damaged.service"));
    EXPECT_FALSE(find(items, "not-a-service.timer"));

    const LoginItem& owl = item(items, "owl.service");
    EXPECT_EQ(owl.name, "Night Owl");
    EXPECT_TRUE(owl.appStillThere);

    const LoginItem& vendor = item(items, "vendor.service");
    EXPECT_FALSE(vendor.enabled);
    EXPECT_TRUE(vendor.needsAdmin);
    EXPECT_EQ(vendor.path, system.userUnitsVendor + "/vendor.service");
    EXPECT_FALSE(find(items, "static.service")) << "started only on another unit's demand";
    EXPECT_TRUE(item(items, "wanted-static.service").enabled) << "linked from /etc/systemd/user";

    const LoginItem& shadow = item(items, "shadow.service");
    EXPECT_EQ(shadow.name, "Mine");
    EXPECT_FALSE(shadow.needsAdmin);

    const LoginItem& masked = item(items, "masked.service");
    EXPECT_FALSE(masked.enabled) << "a mask beats the wants link";
    EXPECT_EQ(masked.path, system.userUnitsVendor + "/masked.service");

    EXPECT_EQ(LinuxFixtures::contents(bin + "/dpkg.calls").count('\n'), 1) << "one dpkg call for every program";
}

TEST_F(LinuxLoginItemsTest, XdgConfigHomeIsHonouredAndAllItemsSortWithTheMacOnes) {
    const QString config = Sandbox::scratch("config");
    LinuxFixtures::desktopEntry(config + "/autostart/elsewhere.desktop", {"Type=Application", "Name=Elsewhere", "Exec=owl-agent"});
    LinuxFixtures::text(config + "/systemd/user/elsewhere.service", "[Service]\nExecStart=owl-agent\n");
    {
        const ScopedEnv xdg("XDG_CONFIG_HOME", config.toUtf8());
        const QList<LoginItem> items = list();
        EXPECT_TRUE(find(items, "elsewhere"));
        EXPECT_TRUE(find(items, "elsewhere.service"));
        EXPECT_FALSE(find(items, "gone")) << "~/.config is not read when XDG_CONFIG_HOME points elsewhere";
        EXPECT_TRUE(find(items, "plain"));
    }
    const ScopedEnv path("PATH", bin.toUtf8() + ":/usr/bin:/bin");
    const QList<LoginItem> all = LoginItems::list(system);
    const QStringList order = fieldOf(all, &LoginItem::identifier);
    ASSERT_FALSE(order.isEmpty());
    EXPECT_EQ(order.first(), "org.gone.Game") << "this user's first, by name (Game)";
    EXPECT_LT(order.indexOf("masked.service"), order.indexOf("plain")) << "Masked, then Plain, both everyone's";
    for (qsizetype i = 1; i < all.size(); ++i) EXPECT_LE(all[i - 1].needsAdmin, all[i].needsAdmin);
}

TEST_F(LinuxLoginItemsTest, SystemctlOverridesTheLinksWhenItAnswersForEveryUnit) {
    const QString systemctl = system.systemctl;
    const QStringList names = fieldOf(UserUnits::list(system), &UserUnits::Unit::name);
    EXPECT_EQ(names, (QStringList{"backup.service", "gone.service", "masked.service", "owl.service", "reset.service",
                                  "runtime.service", "shadow.service", "sync@.service", "vendor.service", "wanted-static.service"}));
    // backup: disabled, gone: enabled; the rest: answers the links decide.
    QByteArray answers = "disabled\nenabled\nmasked\nstatic\nlinked\nindirect\nenabled-runtime\nalias\nbad\ngenerated\n";
    LinuxFixtures::script(Paths::parentOf(systemctl), "systemctl",
                          "echo \"$*\" > '" + systemctl.toUtf8() + ".args'\nprintf '" + answers + "'\nexit 1\n");
    QHash<QString, bool> enabled;
    for (const UserUnits::Unit& u : UserUnits::list(system, systemctl)) enabled.insert(u.name, u.enabled);
    EXPECT_EQ(LinuxFixtures::contents(systemctl + ".args"), "--user is-enabled -- " + names.join(' ').toUtf8() + "\n");
    EXPECT_FALSE(enabled["backup.service"]);
    EXPECT_TRUE(enabled["gone.service"]);
    EXPECT_TRUE(enabled["shadow.service"]);
    EXPECT_TRUE(enabled["sync@.service"]) << "\"alias\" leaves it to the links";
    EXPECT_FALSE(enabled["vendor.service"]) << "\"bad\" leaves it to the links";

    // An answer that does not fit the question, or none at all: the links decide.
    LinuxFixtures::script(Paths::parentOf(systemctl), "systemctl", "echo 'Failed to connect to bus' >&2\nexit 1\n");
    for (const UserUnits::Unit& u : UserUnits::list(system, systemctl))
        EXPECT_EQ(u.enabled, u.name == "backup.service" || u.name == "sync@.service" || u.name == "wanted-static.service")
            << u.name.toStdString();
    LinuxFixtures::script(Paths::parentOf(systemctl), "systemctl", "echo enabled\n");
    EXPECT_FALSE(UserUnits::list(system, systemctl)[1].enabled);

}

TEST(LinuxLoginCommands, FlatpakRunIdsAndServiceCommands) {
    using LinuxLoginItems::flatpakRunID;
    EXPECT_EQ(flatpakRunID({"/usr/bin/flatpak", "run", "--branch=stable", "--command=owl", "org.example.Owl", "--x"}), "org.example.Owl");
    EXPECT_EQ(flatpakRunID({"flatpak", "list"}), "");
    EXPECT_EQ(flatpakRunID({"/usr/bin/owl", "run", "x"}), "");
    EXPECT_EQ(flatpakRunID({}), "");

    const auto unit = [](const QByteArray& service) {
        return UserUnits::command(*KeyFile::parse("[Service]\n" + service, KeyFile::Syntax::systemdUnit), "/home/robin");
    };
    EXPECT_EQ(unit("ExecStart=@/usr/bin/owl owl-argv0 --x\n"), (QStringList{"/usr/bin/owl", "owl-argv0", "--x"}));
    EXPECT_EQ(unit("ExecStart=-:+/usr/bin/owl\n"), (QStringList{"/usr/bin/owl"}));
    EXPECT_EQ(unit("ExecStart=/bin/owl 100%%\n"), (QStringList{"/bin/owl", "100%"}));
    EXPECT_EQ(unit("ExecStart=\"/opt/Night Owl/owl\" %U\n"), (QStringList{"/opt/Night Owl/owl", "%U"}));
    EXPECT_EQ(unit("ExecStart=/usr/bin/a\nExecStart=/usr/bin/b\n"), (QStringList{"/usr/bin/a"})) << "the first of a list";
    EXPECT_EQ(unit("ExecStart=/usr/bin/a\nExecStart=\n"), std::nullopt);
    EXPECT_EQ(unit("ExecStart=\"/usr/bin/a\n"), std::nullopt);
    EXPECT_EQ(unit("Type=oneshot\n"), std::nullopt);
}
