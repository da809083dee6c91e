#include <gtest/gtest.h>


#include "platform/known_apps.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

using LinuxFixtures::ScopedEnv;
using LinuxFixtures::contents;

namespace {

// A `flatpak` that prints two application ids and counts its runs in `runs`.
QString fakeFlatpak(const QString& runs) {
    const QString bin = Sandbox::scratch("bin");
    LinuxFixtures::script(bin, "flatpak", "echo run >> '" + runs.toUtf8() + "'\n[ \"$*\" = 'list --app --columns=application' ] || exit 3\n"
                                          "printf 'org.example.Flat\\n  com.example.Other  \\n\\n'\n");
    return bin;
}

}  // namespace

TEST(KnownApps, DesktopEntriesAreLookedUpInTheXdgApplicationFolders) {
    const QString root = Sandbox::scratch("xdg");
    const ScopedEnv dataHome("XDG_DATA_HOME", (root + "/data").toUtf8());
    const ScopedEnv dataDirs("XDG_DATA_DIRS", (root + "/one:relative/ignored::" + root + "/two").toUtf8());
    const QStringList folders = KnownApps::applicationFolders();
    EXPECT_EQ(folders, (QStringList{root + "/data/applications", root + "/one/applications", root + "/two/applications"}));

    Files::makeDirs(root + "/two/applications/org.example.Sub.desktop");  // a folder is no entry
    Files::makeDirs(root + "/data/applications");
    Files::writeText(root + "/two/applications/org.example.Editor.desktop", "[Desktop Entry]\n");
    Files::symlink(root + "/two/applications/org.example.Editor.desktop", root + "/data/applications/org.example.Linked.desktop");
    EXPECT_TRUE(KnownApps::hasDesktopEntry("org.example.Editor", folders));
    EXPECT_TRUE(KnownApps::hasDesktopEntry("org.example.Linked", folders));
    EXPECT_FALSE(KnownApps::hasDesktopEntry("org.example.editor", folders)) << "identifiers keep their case";
    EXPECT_FALSE(KnownApps::hasDesktopEntry("org.example.Sub", folders));
    EXPECT_FALSE(KnownApps::hasDesktopEntry("", folders));
    EXPECT_FALSE(KnownApps::hasDesktopEntry("../two/applications/org.example.Editor", {root + "/one/applications"}));

    const ScopedEnv defaults("XDG_DATA_DIRS", "");
    EXPECT_EQ(KnownApps::applicationFolders().mid(1), (QStringList{"/usr/local/share/applications", "/usr/share/applications"}));
}

TEST(KnownApps, FlatpaksAreListedOnceAndOnlyWhenADesktopEntryDoesNotSettleIt) {
    const QString runs = Sandbox::scratch("runs") + "/count";
    const QString root = Sandbox::scratch("xdg");
    const ScopedEnv path("PATH", fakeFlatpak(runs).toUtf8() + ":" + qgetenv("PATH"));
    const ScopedEnv dataHome("XDG_DATA_HOME", (root + "/data").toUtf8());
    const ScopedEnv dataDirs("XDG_DATA_DIRS", (root + "/none").toUtf8());
    Files::makeDirs(root + "/data/applications");
    Files::writeText(root + "/data/applications/org.example.Desk.desktop", "[Desktop Entry]\n");

    EXPECT_EQ(KnownApps::installedFlatpaks(), (QSet<QString>{"org.example.Flat", "com.example.Other"}));
    EXPECT_EQ(contents(runs), "run\n");

    const auto knows = KnownApps::lookup();
    EXPECT_TRUE(knows("org.example.Desk"));
    EXPECT_EQ(contents(runs), "run\n") << "a desktop entry answers without running flatpak";
    EXPECT_TRUE(knows("org.example.Flat"));
    EXPECT_TRUE(knows("com.example.Other"));
    EXPECT_FALSE(knows("org.example.Gone"));
    EXPECT_EQ(contents(runs), "run\nrun\n") << "one listing for all questions";

    const ScopedEnv noFlatpak("PATH", (Sandbox::scratch("empty")).toUtf8());
    EXPECT_TRUE(KnownApps::installedFlatpaks().isEmpty());
    EXPECT_FALSE(KnownApps::lookup()("org.example.Flat"));
}
