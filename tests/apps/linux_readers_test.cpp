#include <gtest/gtest.h>

#include <sys/stat.h>

#include "platform/command_line.h"
#include "platform/debian_packages.h"
#include "platform/desktop_entry.h"
#include "platform/key_file.h"
#include "platform/small_file.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

using LinuxFixtures::ScopedEnv;
using Syntax = KeyFile::Syntax;

TEST(KeyFileReader, ReadsGroupsKeysCommentsAndTheLastOfRepeatedKeys) {
    const auto file = KeyFile::parse("# a comment\n\n[Desktop Entry]\r\nName = Night Owl\nName[de]=Nachteule\n"
                                     "Exec=owl --x\\sy \"%U\"\nName=Night Owl 2\n  # indented comment\n"
                                     "[Desktop Action new]\nName=New Window\nX-KDE-Flag=a=b\nEmpty=\n",
                                     Syntax::desktopEntry);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->groups, (QStringList{"Desktop Entry", "Desktop Action new"}));
    EXPECT_EQ(file->value("Desktop Entry", "Name"), "Night Owl 2") << "a later line overrides";
    EXPECT_EQ(file->values("Desktop Entry", "Name"), (QStringList{"Night Owl", "Night Owl 2"}));
    EXPECT_EQ(file->value("Desktop Entry", "Name[de]"), "Nachteule") << "localized keys are keys of their own";
    EXPECT_EQ(file->value("Desktop Entry", "Exec"), "owl --x y \"%U\"") << "\\s is a blank";
    EXPECT_EQ(file->value("Desktop Action new", "Name"), "New Window");
    EXPECT_EQ(file->value("Desktop Action new", "X-KDE-Flag"), "a=b") << "only the first = separates";
    EXPECT_EQ(file->value("Desktop Action new", "Empty"), "");
    EXPECT_EQ(file->value("Desktop Entry", "Icon"), std::nullopt);
    EXPECT_EQ(file->value("Nowhere", "Name"), std::nullopt);

    const auto flags = KeyFile::parse("[G]\nb=1\nd=0\ne=yes\n", Syntax::desktopEntry);
    ASSERT_TRUE(flags);
    EXPECT_TRUE(flags->flag("G", "b") == true && flags->flag("G", "d") == false);
    EXPECT_EQ(flags->flag("G", "e"), std::nullopt) << "only true/false/1/0 are booleans";

    // Damaged: each of these is not a key file at all.
    for (const QByteArray& damaged : QList<QByteArray>{"Name=before any group\n[G]\n", "[G\nName=x\n", "[G]\njust words\n",
                                                       "[G]\n=no key\n", "[G]\nbad key=x\n", "[G]\nName=\xff\xfe\n",
                                                       QByteArray("[G]\nName=a\0b\n", 13), "[]\n", "[G]\nName[=x\n"})
        EXPECT_EQ(KeyFile::parse(damaged, Syntax::desktopEntry), std::nullopt) << damaged.constData();
    EXPECT_TRUE(KeyFile::parse("", Syntax::desktopEntry)) << "an empty file is a key file without groups";
}

TEST(KeyFileReader, SystemdUnitsTakeSemicolonCommentsAndContinuedLines) {
    const auto unit = KeyFile::parse("[Unit]\nDescription=Backup \\\n  of the home\n; comment\n[Service]\n"
                                     "ExecStart=/usr/bin/backup \\\n# dropped\n  --all\nExecStart=\nEnvironment=A=\\s\n",
                                     Syntax::systemdUnit);
    ASSERT_TRUE(unit);
    EXPECT_EQ(unit->value("Unit", "Description"), "Backup of the home");
    EXPECT_EQ(unit->values("Service", "ExecStart"), (QStringList{"/usr/bin/backup --all", ""}));
    EXPECT_EQ(unit->value("Service", "Environment"), "A=\\s") << "a unit's values are kept as written";
    EXPECT_EQ(KeyFile::parse("; comment\n[G]\n", Syntax::desktopEntry), std::nullopt) << "not a desktop entry comment";
}

TEST(KeyFileReader, OnlySmallRegularFilesAreRead) {
    const QString dir = Sandbox::scratch("keys");
    LinuxFixtures::text(dir + "/ok.desktop", "[Desktop Entry]\nName=Ok\n");
    Files::symlink(dir + "/ok.desktop", dir + "/link.desktop");
    Files::makeDirs(dir + "/folder.desktop");
    Files::write(dir + "/huge.desktop", 2 * 1024 * 1024, '#');
    ::mkfifo(Files::bytes(dir + "/pipe.desktop").constData(), 0644);

    EXPECT_TRUE(KeyFile::read(dir + "/ok.desktop", Syntax::desktopEntry));
    EXPECT_TRUE(KeyFile::read(dir + "/link.desktop", Syntax::desktopEntry)) << "links are followed";
    for (const char* name : {"folder.desktop", "huge.desktop", "pipe.desktop", "missing.desktop"})
        EXPECT_EQ(KeyFile::read(dir + "/" + name, Syntax::desktopEntry), std::nullopt) << name;
    EXPECT_EQ(SmallFile::head(dir + "/ok.desktop", 8), "[Desktop");
    EXPECT_EQ(SmallFile::head(dir + "/ok.desktop", 100)->size(), 24) << "a short file gives what it has";
    EXPECT_EQ(SmallFile::head(dir + "/pipe.desktop", 8), std::nullopt);
}

TEST(CommandLines, SplitQuotesAndFindTheProgram) {
    using CommandLine::split;
    EXPECT_EQ(split("owl  --open \"My File\" 'it''s' a\\ b %U"),
              (QStringList{"owl", "--open", "My File", "its", "a b", "%U"}));
    EXPECT_EQ(split("\"/opt/Night Owl/owl\" \"\""), (QStringList{"/opt/Night Owl/owl", ""}));
    EXPECT_EQ(split("sh -c \"echo \\\"hi\\\"\""), (QStringList{"sh", "-c", "echo \"hi\""}));
    EXPECT_EQ(split("'a\\b'"), (QStringList{"a\\b"})) << "single quotes keep backslashes";
    EXPECT_EQ(split("   "), QStringList());
    EXPECT_EQ(split("owl \"open"), std::nullopt);
    EXPECT_EQ(split("owl 'open"), std::nullopt);

    using CommandLine::program;
    EXPECT_EQ(program({"/usr/bin/owl", "--x"}), "/usr/bin/owl");
    EXPECT_EQ(program({"env", "-u", "X", "A=1", "B=2", "/opt/owl.AppImage", "%U"}), "/opt/owl.AppImage");
    EXPECT_EQ(program({"/usr/bin/env", "A=1"}), "");
    EXPECT_EQ(program({}), "");
}

TEST(CommandLines, ProgramsAreLocatedByPathOrInTheSearchPath) {
    const QString one = Sandbox::scratch("one"), two = Sandbox::scratch("two");
    LinuxFixtures::script(two, "owl", "true\n");
    LinuxFixtures::text(one + "/owl", "not executable");  // skipped: not executable
    Files::makeDirs(one + "/folder");
    EXPECT_EQ(CommandLine::locate("owl", {one, two}), two + "/owl");
    EXPECT_EQ(CommandLine::locate("folder", {one, two}), std::nullopt);
    EXPECT_EQ(CommandLine::locate(one + "/owl", {}), one + "/owl") << "a path only needs to exist";
    EXPECT_EQ(CommandLine::locate("", {one, two}), std::nullopt);

    const ScopedEnv path("PATH", (one + ":relative:" + two).toUtf8());
    EXPECT_EQ(CommandLine::searchPath(), (QStringList{one, two}));
    const ScopedEnv noPath("PATH", "");
    EXPECT_EQ(CommandLine::searchPath(), (QStringList{"/usr/local/bin", "/usr/bin", "/bin"}));
}

TEST(DesktopEntries, KeysOfTheDesktopEntryGroupOnly) {
    const QString dir = Sandbox::scratch("entries");
    const auto entry = DesktopEntry::read(LinuxFixtures::text(
        dir + "/org.example.Owl.desktop",
        "[Desktop Entry]\nType=Application\nName=Night Owl\nName[fr]=Hibou\nExec=env OWL=1 /opt/owl --new %U\n"
        "TryExec=/opt/owl\nIcon=owl\nStartupWMClass=night-owl\nX-Flatpak=org.example.Owl\nHidden=true\n"
        "X-GNOME-Autostart-enabled=false\n[Desktop Action x]\nExec=/other\n"));
    ASSERT_TRUE(entry);
    EXPECT_EQ(*entry, (DesktopEntry{dir + "/org.example.Owl.desktop", "org.example.Owl", "Application", "Night Owl",
                                    {"env", "OWL=1", "/opt/owl", "--new", "%U"}, "/opt/owl", "owl", "night-owl",
                                    "org.example.Owl", true, false}));
    EXPECT_EQ(entry->program(), "/opt/owl");

    const auto bare = DesktopEntry::read(LinuxFixtures::text(dir + "/bare.desktop", "[Desktop Entry]\nHidden=true\n"));
    ASSERT_TRUE(bare);
    EXPECT_TRUE(bare->exec.isEmpty());
    EXPECT_EQ(bare->autostartEnabled, std::nullopt);
    EXPECT_EQ(DesktopEntry::read(LinuxFixtures::text(dir + "/other.desktop", "[Other]\nName=x\n")), std::nullopt);
    EXPECT_EQ(DesktopEntry::read(LinuxFixtures::text(dir + "/open.desktop", "[Desktop Entry]\nExec=\"/opt/owl\n")),
              std::nullopt)
        << "an Exec with an open quote runs nothing";
}

TEST(DebianPackagesOfPrograms, SpellingsAndDpkgOutput) {
    EXPECT_EQ(DebianPackages::spellings("/usr/bin/quarle-none"), (QStringList{"/usr/bin/quarle-none", "/bin/quarle-none"}));
    EXPECT_EQ(DebianPackages::spellings("/opt/quarle-none"), (QStringList{"/opt/quarle-none"}));
    const QString dir = Sandbox::scratch("real");
    Files::write(dir + "/target", 10);
    Files::symlink(dir + "/target", dir + "/alias");
    EXPECT_EQ(DebianPackages::spellings(dir + "/alias"), (QStringList{dir + "/alias", dir + "/target"}));

    EXPECT_EQ(DebianPackages::parseOwners("diversion by dash from: /bin/sh\ndiversion by dash to: /bin/sh.distrib\n"
                                          "dash: /bin/sh\nlibc6:amd64, libc6:i386: /usr/share/doc/libc6\n"
                                          "local diversion from: /x\ngarbage line\nodd: name: /opt/a: b\n"),
              (QHash<QString, QString>{{"/bin/sh", "dash"}, {"/usr/share/doc/libc6", "libc6"}, {"/opt/a: b", "odd"}}))
        << "one package for both architectures; a path may itself hold \": \"";
}

TEST(DebianPackagesOfPrograms, OneDpkgCallForAllProgramsAndNothingWithoutDpkg) {
    const QString bin = Sandbox::scratch("bin");
    const QString log = bin + "/calls";
    LinuxFixtures::script(bin, "dpkg",
                          "echo \"$*\" >> '" + log.toUtf8() + "'\n"
                          "for p in \"$@\"; do case \"$p\" in\n"
                          "  /bin/owl) echo 'owl-tools: /bin/owl';;\n"
                          "  /opt/both) echo 'a, b:arm64: /opt/both';;\n"
                          "  -S) ;;\n"
                          "  *) echo \"dpkg-query: no path found matching pattern $p\" >&2;;\n"
                          "esac; done\nexit 1\n");
    const ScopedEnv path("PATH", bin.toUtf8() + ":" + qgetenv("PATH"));
    const auto owners = DebianPackages::owners({"/usr/bin/owl", "/opt/both", "/opt/none", "/usr/bin/owl", "relative",
                                                "/opt/with*star"});
    EXPECT_EQ(owners, (QHash<QString, QString>{{"/usr/bin/owl", "owl-tools"}, {"/opt/both", "a, b"}}))
        << "dpkg's exit status 1 for the path it does not know loses nothing";
    EXPECT_EQ(LinuxFixtures::contents(log), "-S /usr/bin/owl /bin/owl /opt/both /opt/none\n")
        << "one call; relative paths and patterns are not asked";

    EXPECT_TRUE(DebianPackages::owners({}).isEmpty());
    EXPECT_EQ(LinuxFixtures::contents(log).count('\n'), 1) << "nothing to ask, no call";
    LinuxFixtures::script(bin, "dpkg", "sleep 30\n");
    EXPECT_TRUE(DebianPackages::owners({"/bin/owl"}, 0.5).isEmpty()) << "a hanging dpkg is given up";
    const ScopedEnv noDpkg("PATH", Sandbox::scratch("empty").toUtf8());
    EXPECT_TRUE(DebianPackages::owners({"/bin/owl"}).isEmpty());
}

TEST(DebianPackagesOfPrograms, TheRealDpkgKnowsTheShellUnderEitherSpelling) {
    if (!CommandLine::locate("dpkg") || !Files::exists("/bin/sh")) GTEST_SKIP() << "no dpkg here";
    const auto real = DebianPackages::owners({"/bin/sh", "/usr/bin/sh"});
    if (real.isEmpty()) GTEST_SKIP() << "dpkg knows no package of /bin/sh on this system";
    EXPECT_FALSE(real.value("/bin/sh").isEmpty());
    EXPECT_EQ(real.value("/usr/bin/sh"), real.value("/bin/sh")) << "the merged /usr spelling finds the same package";
}
