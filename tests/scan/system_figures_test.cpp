#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/system_figures.h"
#include "scan/access.h"
#include "scan/scanner.h"
#include "support/as_user.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

TEST(SystemFigures, VolumeAndTemporaryFolder) {
    const Volume v = Scanner::volume();
    EXPECT_GT(v.total, 0);
    EXPECT_GE(v.free, 0);
    EXPECT_LE(v.free, v.total);
    EXPECT_EQ(v.freeImportant, v.free);
    EXPECT_EQ(v.purgeable(), 0);
    EXPECT_FALSE(v.name.isEmpty());
    EXPECT_FALSE(Scanner::volumeUsed("/System/Volumes/Data"));  // no such volume here
    EXPECT_GT(*Scanner::volumeUsed("/"), 0);

    // The sandbox's TMPDIR lies on the home's file system.
    EXPECT_EQ(Scanner::userTempFolder(), Sandbox::root() + "/tmp");
    const LinuxFixtures::ScopedEnv restore("TMPDIR", qgetenv("TMPDIR"));
    ::setenv("TMPDIR", (Files::bytes(Sandbox::root()) + "/tmp///").constData(), 1);
    EXPECT_EQ(Scanner::userTempFolder(), Sandbox::root() + "/tmp");  // trailing slashes dropped
    ::setenv("TMPDIR", "/proc", 1);  // another file system
    EXPECT_FALSE(Scanner::userTempFolder());
    ::setenv("TMPDIR", "/no/such/folder", 1);
    EXPECT_FALSE(Scanner::userTempFolder());
}

TEST(Access, TheTrashDecides) {
    const QString trash = Sandbox::scratch("trash") + "/files";
    EXPECT_EQ(Access::fullDisk(trash), true);  // not there yet: nothing kept from us
    Files::makeDirs(trash);
    Files::write(trash + "/a", 100);
    EXPECT_EQ(Access::fullDisk(trash), true);
    const QString notFolder = Sandbox::scratch("notdir") + "/files";
    Files::writeText(notFolder, "x");
    EXPECT_FALSE(Access::fullDisk(notFolder).has_value());  // cannot tell
    ::chmod(Files::bytes(trash).constData(), 0700);
    if (!AsUser::canDrop()) GTEST_SKIP() << "cannot switch to an unprivileged user here";
    const auto answer = AsUser::run([&] {
        const auto a = Access::fullDisk(trash);
        return QByteArray(a ? (*a ? "true" : "false") : "unknown");
    });
    EXPECT_EQ(answer, QByteArray("false"));
    ::chmod(Files::bytes(trash).constData(), 0755);
}
