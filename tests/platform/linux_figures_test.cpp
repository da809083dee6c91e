#include <gtest/gtest.h>

#include <unistd.h>

#include <limits>

#include "platform/running_programs.h"
#include "platform/system_figures.h"
#include "platform/user_dirs.h"
#include "platform/xdg.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

TEST(UserDirs, LocalisedQuotedAndEscapedValues) {
    const QString home = "/home/anna";
    const QByteArray text =
        "# This file is written by xdg-user-dirs-update\n"
        "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n"
        "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
        "  XDG_PICTURES_DIR = \"${HOME}/Bilder\"   # localised\n"
        "XDG_DOCUMENTS_DIR=\"$HOME/Eigene Dokumente\"\n"
        "XDG_MUSIC_DIR=\"/data/Musik\"\n"
        "XDG_VIDEOS_DIR=$HOME/Vid\\\"eos\n"
        "XDG_TEMPLATES_DIR=\"$HOME/\"\n"          // the home itself: not set up
        "XDG_PUBLICSHARE_DIR=\"Öffentlich\"\n"   // relative: ignored
        "XDG_BROKEN_DIR=\"$HOME/open\n"          // a quote left open
        "XDG_HOMEWORK_DIR=\"$HOMEWORK/x\"\n"     // another variable
        "NOT_XDG=\"$HOME/x\"\n"
        "XDG_EXTRA_DIR=\"$HOME/a/../Extra//\"\n"
        "garbage\n";
    const QMap<QString, QString> dirs = UserDirs::parse(text, home);
    EXPECT_EQ(dirs, (QMap<QString, QString>{{"DESKTOP", "/home/anna/Schreibtisch"},
                                            {"DOWNLOAD", "/home/anna/Downloads"},
                                            {"PICTURES", "/home/anna/Bilder"},
                                            {"DOCUMENTS", "/home/anna/Eigene Dokumente"},
                                            {"MUSIC", "/data/Musik"},
                                            {"VIDEOS", "/home/anna/Vid\"eos"},
                                            {"TEMPLATES", ""},
                                            {"EXTRA", "/home/anna/Extra"}}));
    // Raw bytes in a name survive.
    EXPECT_EQ(UserDirs::parse("XDG_MUSIC_DIR=\"$HOME/M\xff\"\n", home).value("MUSIC"), home + "/M" + QChar(0xDCFF));

    // The file's folders over the defaults; a folder set to the home drops the default too.
    const QString folder = Sandbox::scratch("config");
    Files::writeText(folder + "/user-dirs.dirs", text);
    const QMap<QString, QString> read = UserDirs::read(home, folder + "/user-dirs.dirs");
    EXPECT_EQ(read.value("PICTURES"), "/home/anna/Bilder");
    EXPECT_EQ(read.value("PUBLICSHARE"), "/home/anna/Public");  // the ignored value leaves the default
    EXPECT_FALSE(read.contains("TEMPLATES"));
    const QMap<QString, QString> missing = UserDirs::read(home, folder + "/nothing");
    EXPECT_EQ(missing.value("VIDEOS"), "/home/anna/Videos");
    EXPECT_EQ(missing.size(), UserDirs::defaults().size());
}

TEST(Xdg, OnlyAbsoluteValuesCountAndTheSystemRootIsAStandInForSlash) {
    const LinuxFixtures::ScopedEnv restore("XDG_CONFIG_HOME", qgetenv("XDG_CONFIG_HOME"));
    EXPECT_EQ(Xdg::configHome(), Sandbox::home() + "/.config");
    qputenv("XDG_CONFIG_HOME", "/etc/elsewhere/");
    EXPECT_EQ(Xdg::configHome(), "/etc/elsewhere");
    qputenv("XDG_CONFIG_HOME", "~/conf");
    EXPECT_EQ(Xdg::configHome(), Sandbox::home() + "/.config");

    // The stand-in for "/", likewise.
    const LinuxFixtures::ScopedEnv root("QUARLE_SYSTEM_ROOT", "");
    EXPECT_EQ(SystemFigures::systemRoot(), "");
    qputenv("QUARLE_SYSTEM_ROOT", "/");
    EXPECT_EQ(SystemFigures::systemRoot(), "");
    qputenv("QUARLE_SYSTEM_ROOT", "/srv/fixture/./sys/");
    EXPECT_EQ(SystemFigures::systemRoot(), "/srv/fixture/sys");
}

TEST(SwapAreas, NamesWithEscapesAndTheirSizes) {
    const QByteArray text =
        "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
        "/swap\\040file\\011x\\134y                    file\t\t1048572\t\t2048\t\t-2\n"
        "/dev/dm-1                               partition\t8388604\t\t0\t\t-3\n"
        "/bad\\9 file 4 x -1\n"            // a used column that is no number
        "/half file\n"
        "/neg file -4 0 -1\n"
        "/huge file 9223372036854775807 0 -1\n"
        "/odd\\41\\400 file 8 1 -1\n";      // not three octal digits, or past a byte: kept as written
    const QList<SystemFigures::SwapArea> areas = SystemFigures::parseSwapAreas(text);
    ASSERT_EQ(areas.size(), 3);
    EXPECT_EQ(areas[0], (SystemFigures::SwapArea{"/swap file\tx\\y", "file", 1048572LL * 1024, 2048 * 1024}));
    EXPECT_EQ(areas[1], (SystemFigures::SwapArea{"/dev/dm-1", "partition", 8388604LL * 1024, 0}));
    EXPECT_EQ(areas[2].path, "/odd\\41\\400");
    EXPECT_EQ(SystemFigures::parseSwaps(text), (2048 + 1) * 1024);
    EXPECT_EQ(SystemFigures::unescapeOctal("a\\040b\\012\\"), QByteArray("a b\n\\"));
}

TEST(MountTable, TheLongestMountPointHoldingThePathWithItsEscapesUndone) {
    const QByteArray table = "22 1 259:2 / / rw - ext4 /dev/a rw\n45 22 259:3 / /home rw - ext4 /dev/b rw\n"
                             "61 45 0:45 / /home/u/My\\040Drive rw - fuse x rw\n70 45 0:46 / /home/u/M rw - tmpfs t rw\nshort\n";
    EXPECT_EQ(SystemFigures::mountPointIn(table, "/home/u/My Drive/a"), "/home/u/My Drive");
    EXPECT_EQ(SystemFigures::mountPointIn(table, "/home/u/Music"), "/home") << "whole components only";
    EXPECT_EQ(SystemFigures::mountPointIn(table, "/etc"), "/");
    EXPECT_EQ(SystemFigures::mountPointIn("", "/home"), "/");
}

TEST(Reserved, FreeLessAvailableNeverNegative) {
    EXPECT_EQ(SystemFigures::reserved(1000, 950, 4096), 50 * 4096);
    EXPECT_EQ(SystemFigures::reserved(950, 1000, 4096), 0);  // more available than free
    EXPECT_EQ(SystemFigures::reserved(0, 0, 4096), 0);
    EXPECT_EQ(SystemFigures::reserved(1000, 0, 0), 0);
    EXPECT_EQ(SystemFigures::reserved(std::numeric_limits<quint64>::max(), 0, 1 << 20),
              std::numeric_limits<qint64>::max());  // clamped, never wrapped
    const auto home = SystemFigures::space(Sandbox::home());
    ASSERT_TRUE(home);
    EXPECT_GE(home->reserved, 0);
    EXPECT_LE(home->reserved, home->total - home->free);
}

TEST(Journal, TheFigureJournalctlPrints) {
    EXPECT_EQ(SystemFigures::parseJournalUsage("Archived and active journals take up 1.5G in the file system.\n"),
              qint64(1.5 * 1024 * 1024 * 1024));
    EXPECT_EQ(SystemFigures::parseJournalUsage("Journals take up 512B on disk."), 512);
    EXPECT_EQ(SystemFigures::parseJournalUsage("No journal files were found."), std::nullopt);
    EXPECT_EQ(SystemFigures::parseJournalUsage("take up lots"), std::nullopt);
}

TEST(RunningPrograms, NamesAndPathsOfTheUsersProcesses) {
    using P = RunningPrograms::Program;
    const QList<P> running{{"/usr/share/code/code", "code"},
                           {"/opt/Signal/signal-desktop", "signal-desktop"},
                           {"/opt/google/chrome/chrome", "chrome"},
                           {"/usr/share/teams/teams", "teams"},
                           {"", "Discord"},
                           {"/usr/bin/bash", "bash"}};
    for (const char* app : {"Code", "Signal", "google-chrome", "Microsoft Teams", "discord"})
        EXPECT_TRUE(RunningPrograms::runs(app, running)) << app;
    for (const char* app : {"Slack", "obsidian", "Element", "bin", "", "BraveSoftware"})
        EXPECT_FALSE(RunningPrograms::runs(app, running)) << app;
    EXPECT_FALSE(RunningPrograms::runs("Code", {}));

    // A /proc of a test's own: numeric folders of this user only, a replaced executable's path.
    const QString proc = Sandbox::scratch("proc");
    Files::makeDirs(proc + "/12");
    Files::symlink("/opt/Slack/slack (deleted)", proc + "/12/exe");
    Files::writeText(proc + "/12/comm", "slack\n");
    Files::makeDirs(proc + "/13");
    Files::writeText(proc + "/13/comm", "kworker/0:1\n");
    Files::makeDirs(proc + "/self");
    Files::writeText(proc + "/self/comm", "me\n");
    Files::makeDirs(proc + "/14");
    Files::writeText(proc + "/14/comm", "someone-else\n");
    ASSERT_EQ(::chown(Files::bytes(proc + "/14").constData(), 65534, 65534), 0);
    QList<P> listed = RunningPrograms::list(proc);
    std::sort(listed.begin(), listed.end(), [](const P& a, const P& b) { return a.name < b.name; });
    EXPECT_EQ(listed, (QList<P>{{"", "kworker/0:1"}, {"/opt/Slack/slack", "slack"}}));
    EXPECT_TRUE(RunningPrograms::list(proc + "/missing").isEmpty());
}
