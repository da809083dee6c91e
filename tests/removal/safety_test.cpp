#include <gtest/gtest.h>

#include <QFile>

#include "core/home.h"
#include "platform/running_apps.h"
#include "removal/safety.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

using Kind = Refusal::Kind;

// A Mac-shaped home, checked against itself.
struct SafetyTest : ::testing::Test {
    QString home = Sandbox::home();
    void SetUp() override {
        Sandbox::clearHome();
        Safety::setRunning([] { return QSet<QString>(); });
    }
    QString make(const QString& relative) {
        Files::makeDirs(home + "/" + relative);
        return home + "/" + relative;
    }
    std::optional<Kind> refused(const QString& path, const QSet<QString>& apps = {}) {
        const Safety::Verdict v = Safety::check(path, home, apps);
        if (v.ok()) return std::nullopt;
        EXPECT_EQ(v.refusal->path, path) << "a refusal names the path as given";
        return v.refusal->kind;
    }
};

TEST_F(SafetyTest, RootsAndProtectedPlacesAreRefusedTheirInsidesAreNot) {
    for (const QString& r : {"Library/Caches", "Library", "Pictures", "Library/Developer/Xcode"}) {
        make(r);
        EXPECT_EQ(refused(home + "/" + r), Kind::protected_) << r.toStdString();
    }
    EXPECT_EQ(refused(home), Kind::outside) << "home itself is not inside home";
    EXPECT_EQ(refused(make("Library/Caches/com.example.app")), std::nullopt);
    EXPECT_EQ(refused(make("Library/Keychains/abc")), Kind::protected_);
    EXPECT_EQ(refused(make("Projects/Mail")), Kind::protected_) << "a protected name is protected anywhere";
    EXPECT_EQ(refused(make("Library/Application Support/Safari")), Kind::protected_);
    EXPECT_EQ(refused(make("Documents/Safari")), std::nullopt) << "library names only count in the Library";
    EXPECT_EQ(refused(make("Music/Old.MusicLibrary")), Kind::protected_) << "extensions compare lower-cased";
    EXPECT_EQ(refused(make("Library/Containers/com.apple.Notes")), Kind::protected_);
    EXPECT_EQ(refused(make("Library/Group Containers/ABCDE12345.com.apple.shared")), Kind::protected_);
    // The home Trash stands where ~/.Trash stands on a Mac.
    Files::makeDirs(Home::trashFolder() + "/files");
    EXPECT_EQ(refused(Home::trashFolder()), Kind::protected_);
    EXPECT_EQ(refused(Home::trashFolder() + "/files"), Kind::protected_);
}

TEST_F(SafetyTest, AContainerOfARunningAppIsInUse) {
    const QString shared = make("Library/Group Containers/ABCDE12345.com.example.shared");
    EXPECT_EQ(refused(shared), std::nullopt);
    Safety::setRunning([] { return QSet<QString>{"com.example.shared"}; });
    EXPECT_EQ(refused(shared), Kind::inUse);
    EXPECT_EQ(refused(make("Library/Containers/com.example.shared")), Kind::inUse);
    EXPECT_EQ(refused(make("Library/Containers/com.example.sharedother")), std::nullopt);

    // The built-in source asks flatpak for its running sandboxes.
    const QString bin = Sandbox::scratch("bin");
    Files::writeText(bin + "/flatpak", "#!/bin/sh\n[ \"$1 $2\" = \"ps --columns=application\" ] || exit 1\n"
                                       "printf 'Application\\norg.example.Maps\\n'\n");
    QFile::setPermissions(bin + "/flatpak", QFile::ReadOwner | QFile::ExeOwner | QFile::ExeOther | QFile::ReadOther);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", Files::bytes(bin) + ":" + path);
    Safety::setRunning(Safety::RunningSource());  // nothing at all
    EXPECT_EQ(refused(make("Library/Containers/org.example.Maps")), std::nullopt);
    Safety::setRunning(RunningApps::ids);
    EXPECT_EQ(refused(home + "/Library/Containers/org.example.Maps"), Kind::inUse);
    qputenv("PATH", path);
}

TEST_F(SafetyTest, TheDeepLookFindsALibraryTwoLevelsDownAndStopsAfter4000Entries) {
    make("Projects/old/x/y/Lib.photoslibrary");
    make("Projects/deeper/x/y/z/Lib.photoslibrary");
    EXPECT_EQ(refused(home + "/Projects/old"), Kind::protected_);
    EXPECT_EQ(refused(home + "/Projects/deeper"), std::nullopt);
    EXPECT_EQ(refused(make("Library/Caches/app/x/Lib.photoslibrary") + "/../.."), std::nullopt)
        << "no deep look under the caches";
    const QString wide = make("Projects/wide");
    for (int i = 0; i < 4000; ++i) Files::writeText(wide + QStringLiteral("/f%1").arg(i), {});
    make("Projects/wide/zz/Lib.photoslibrary");
    EXPECT_EQ(refused(wide), std::nullopt) << "the look gives up after 4,000 entries";
}

TEST_F(SafetyTest, LinksMissingPathsAndPlaces) {
    const QString outside = Sandbox::scratch("outside");
    Files::write(outside + "/x", 10);
    Files::symlink(outside, home + "/link");
    EXPECT_EQ(refused(home + "/link/x"), Kind::symlinkParent);
    const Safety::Verdict asLink = Safety::check(home + "/link", home);
    EXPECT_EQ(asLink.path, home + "/link") << "the last component is removed as the link";
    EXPECT_EQ(refused(home + "/nothing/here"), Kind::missing);
    EXPECT_EQ(refused(outside + "/x"), Kind::outside);
    EXPECT_EQ(refused(outside + "/x", {outside + "/x"}), Kind::outside) << "only apps in /Applications";
    EXPECT_EQ(refused("relative/path"), Kind::outside);
    EXPECT_EQ(refused("/"), Kind::outside);

    // A home folder that lies behind a link is fine; the resolved path is the real one.
    const QString real = Sandbox::scratch("realhome");
    Files::makeDirs(real + "/Projects/a");
    const QString linked = Sandbox::root() + "/linkedhome";
    Files::symlink(real, linked);
    const Safety::Verdict v = Safety::check("~/Projects/./b/../a", linked);
    EXPECT_EQ(v.path, real + "/Projects/a");
    EXPECT_FALSE(v.refusal);
    EXPECT_EQ(Safety::check(linked + "/Projects/nope", linked).refusal, (Refusal{Kind::missing, linked + "/Projects/nope"}));
}

TEST(Refusal, TextsShowTheHomeAsTilde) {
    EXPECT_EQ((Refusal{Refusal::Kind::inUse, Home::at("Library/Containers/x")}).description(),
              "In use by an app that's open: ~/Library/Containers/x");
    EXPECT_EQ((Refusal{Refusal::Kind::symlinkParent, "/opt/x"}).description(), "Reached through a link: /opt/x");
}

}  // namespace

namespace {

TEST_F(SafetyTest, ALinuxHomesBaseFoldersKeysAndTrashRecordsAreProtected) {
    for (const QString& r : {".cache", ".config", ".local", ".local/share", ".local/state", ".var", ".var/app",
                             ".local/share/Trash", ".local/share/Trash/files", ".local/share/Trash/info"}) {
        make(r);
        EXPECT_EQ(refused(home + "/" + r), Kind::protected_) << r.toStdString();
    }
    EXPECT_EQ(refused(make(".cache/fontconfig")), std::nullopt);
    EXPECT_EQ(refused(make(".config/Code/Cache")), std::nullopt);
    for (const QString& p : {".ssh", ".ssh/old-keys", ".gnupg/private-keys-v1.d", ".local/share/keyrings",
                             ".local/share/keyrings/login.keyring", ".password-store/mail", "Projects/app/.ssh"})
        EXPECT_EQ(refused(make(p)), Kind::protected_) << p.toStdString();
    EXPECT_EQ(refused(make(".sshd-config")), std::nullopt) << "only the whole name";

    // An item's record in the Trash goes with the item, never by itself.
    Files::writeText(Home::trashFolder() + "/info/a.trashinfo", "[Trash Info]\n");
    EXPECT_EQ(refused(Home::trashFolder() + "/info/a.trashinfo"), Kind::protected_);
    EXPECT_EQ(refused(make(".local/share/Trash/info/sub")), Kind::protected_);
    EXPECT_EQ(refused(make("Projects/info")), std::nullopt) << "other folders named info are no records";
}

TEST_F(SafetyTest, TheDesktopsUserFoldersAreRootsUnderTheirLocalNames) {
    make(".config");
    Files::writeText(home + "/.config/user-dirs.dirs",
                     "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"
                     "XDG_DOCUMENTS_DIR=\"$HOME/Arbeit/Dokumente\"\n"
                     "XDG_VIDEOS_DIR=\"$HOME\"\n"  // not set up: the home is no new root
                     "XDG_MUSIC_DIR=\"/srv/music\"\n"
                     "XDG_PUBLICSHARE_DIR=\"$HOME/files\"\n");  // named like a half of the Trash
    for (const QString& r : {"Bilder", "Arbeit/Dokumente", "files", "Templates" /* a default the file leaves */})
        EXPECT_EQ(refused(make(r)), Kind::protected_) << r.toStdString();
    EXPECT_EQ(refused(make("Bilder/2019")), std::nullopt) << "what a user folder holds can go";
    EXPECT_EQ(refused(make("Arbeit")), std::nullopt) << "the folder holding one is no root";
    EXPECT_TRUE(Safety::roots(home).contains(home + "/Arbeit/Dokumente"));
    EXPECT_FALSE(Safety::roots(home).contains("/srv/music")) << "only folders inside the home";
    QFile::link(home + "/Bilder", home + "/Pictures-link");
    EXPECT_EQ(refused(home + "/Pictures-link"), std::nullopt) << "a link to one is only a link";
}

TEST_F(SafetyTest, ARunningFlatpakAppsFolderIsInUse) {
    const QString maps = ".var/app/org.gnome.Maps";
    for (const QString& p : {maps + "/data", maps + "/config", maps + "/cache/tiles", maps})
        EXPECT_EQ(refused(make(p)), std::nullopt) << p.toStdString();
    Safety::setRunning([] { return QSet<QString>{"org.gnome.Maps"}; });
    for (const QString& p : {maps + "/data", maps + "/config/dconf", maps + "/cache/tiles", maps})
        EXPECT_EQ(refused(make(p)), Kind::inUse) << p.toStdString();
    EXPECT_EQ(refused(make(".var/app/org.gnome.MapsOld/data")), std::nullopt);
    EXPECT_EQ(refused(make(".var/app/Maps/data")), std::nullopt);
    EXPECT_EQ(refused(make(".config/org.gnome.Maps")), std::nullopt) << "only its own Flatpak folder";
}

}  // namespace
