#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <cstdlib>

#include "core/home.h"
#include "removal/safety.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

using Kind = Refusal::Kind;

// A Mac-shaped home, checked against itself.
struct SafetyTest : ::testing::Test {
    QString home = Sandbox::home();
    Safety::RunningSource running = [] { return QSet<QString>(); };
    void SetUp() override { Sandbox::clearHome(); }
    QString make(const QString& relative) {
        Files::makeDirs(home + "/" + relative);
        return home + "/" + relative;
    }
    std::optional<Kind> refused(const QString& path, const QSet<QString>& apps = {}) {
        const Safety::Verdict v = Safety::check(path, home, apps, running);
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
    EXPECT_EQ(refused(home), Kind::protected_) << "the home itself is protected, not elsewhere";
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
    running = [] { return QSet<QString>{"com.example.shared"}; };
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
    running = Safety::RunningSource();  // nothing at all
    EXPECT_EQ(refused(make("Library/Containers/org.example.Maps")), std::nullopt);
    running = Safety::runningOnPlatform;
    EXPECT_EQ(refused(home + "/Library/Containers/org.example.Maps"), Kind::inUse);
    qputenv("PATH", path);
}

TEST_F(SafetyTest, AFolderHoldingKeysOrALibraryAtAnyDepthIsProtectedAndSoIsOneTooBigToLookThrough) {
    for (const QString& p : {"Projects/a/x/y/z/w/Lib.photoslibrary", "Backup/home/u/.ssh", "Old/x/y/z/.gnupg",
                             ".config/app/deep/.password-store", "Library/Caches/app/x/y/keyrings"}) {
        make(p);
        const QString top = p.section('/', 0, p.startsWith("Library") ? 2 : 1);
        EXPECT_EQ(refused(home + "/" + top), Kind::protected_) << top.toStdString();
    }
    EXPECT_EQ(refused(make("Projects/plain/x/y/z/v")), std::nullopt);
    const QString wide = make("Projects/wide");
    for (int i = 0; i < 30; ++i) Files::writeText(wide + QStringLiteral("/f%1").arg(i), {});
    EXPECT_TRUE(Safety::holdsProtected(wide, home, true, false, 20)) << "unseen is not unprotected";
    EXPECT_FALSE(Safety::holdsProtected(wide, home, true, true, 20)) << "a known cache may be big";
    EXPECT_FALSE(Safety::holdsProtected(wide, home, true, false, 40));
}

TEST_F(SafetyTest, NothingButTheFileTheKernelNamesAndNothingInATrash) {
    const QString elsewhere = Sandbox::scratch("elsewhere");
    Files::makeDirs(elsewhere + "/inner");
    Files::write(elsewhere + "/victim", 1);
    Files::write(home + "/victim", 1);
    Files::symlink(elsewhere + "/inner", home + "/lnk");
    const Safety::Verdict v = Safety::check(home + "/lnk/../victim", home, {}, running);
    ASSERT_TRUE(v.refusal);
    EXPECT_EQ(*v.refusal, (Refusal{Kind::outside, elsewhere + "/victim"})) << "lnk/.. is elsewhere, not ~";
    EXPECT_EQ(refused(home + "/gone/../victim"), Kind::missing) << "no lexical shortcut past a missing folder";
    EXPECT_EQ(refused(""), Kind::empty) << "\"$UNSET\" is not the current folder";

    Files::makeDirs(Home::trashFolder() + "/files");
    Files::write(Home::trashFolder() + "/files/old", 1);
    EXPECT_EQ(refused(Home::trashFolder() + "/files/old"), Kind::inTrash);
    for (const QString& p : {"usb/.Trash-1000/files/a", "usb/.Trash/1000/files/a"})
        EXPECT_EQ(refused(make(p)), Kind::inTrash) << p.toStdString();
    EXPECT_EQ(refused(make("usb/.Trash-stuff/a")), std::nullopt);

    // Deeper than a path can reach: the true reason, not "No longer there".
    QString deep = make("deep");
    int fd = ::open(Files::bytes(deep).constData(), O_DIRECTORY);
    for (int i = 0; i < 25; ++i) {
        const QByteArray name(200, 'd');
        ::mkdirat(fd, name.constData(), 0700);
        const int next = ::openat(fd, name.constData(), O_DIRECTORY);
        ::close(fd);
        fd = next;
        deep += "/" + QString::fromLatin1(name);
    }
    ::close(fd);
    EXPECT_EQ(refused(deep), Kind::tooDeep);
    EXPECT_EQ(std::system(("rm -rf '" + Files::bytes(home + "/deep") + "'").constData()), 0);
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
    Files::makeDirs(real + "/Projects/b");
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
    EXPECT_EQ(refused(Home::trashFolder() + "/info/a.trashinfo"), Kind::inTrash);
    EXPECT_EQ(refused(make(".local/share/Trash/info/sub")), Kind::inTrash);
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
    running = [] { return QSet<QString>{"org.gnome.Maps"}; };
    for (const QString& p : {maps + "/data", maps + "/config/dconf", maps + "/cache/tiles", maps})
        EXPECT_EQ(refused(make(p)), Kind::inUse) << p.toStdString();
    EXPECT_EQ(refused(make(".var/app/org.gnome.MapsOld/data")), std::nullopt);
    EXPECT_EQ(refused(make(".var/app/Maps/data")), std::nullopt);
    EXPECT_EQ(refused(make(".config/org.gnome.Maps")), std::nullopt) << "only its own Flatpak folder";
}

}  // namespace
