#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QJsonArray>
#include <QJsonObject>

#include "core/fmt.h"
#include "core/json.h"
#include "measure/walker.h"
#include "scan/linux_fixture.h"
#include "scan/system_data.h"
#include "support/as_user.h"
#include "support/lists.h"
#include "support/run_quarle.h"

namespace {

constexpr qint64 KB = 1024;

// A system of its own under `root`: every folder the breakdown reads, a /snap that must never be
// walked, a swap file with a blank in its name and a journalctl that answers for its journal.
struct FixtureSystem {
    QString root;
    QMap<QString, qint64> bytes;  // by folder as named on the system

    FixtureSystem(const QString& root, const QString& bin) : root(root) {
        put("/usr/lib/libc.so", 120 * KB);
        put("/usr/bin/tool", 40 * KB);
        put("/opt/app/bin/app", 24 * KB);
        put("/boot/vmlinuz", 32 * KB);
        put("/var/log/syslog", 16 * KB);
        put("/var/log/journal/abc/system.journal", 64 * KB);
        put("/var/cache/apt/archives/big.deb", 28 * KB);
        put("/var/cache/dnf/updates/x.rpm", 12 * KB);
        put("/var/lib/flatpak/runtime/org.gnome.Platform/files/lib.so", 80 * KB);
        put("/var/lib/snapd/snaps/core22_1033.snap", 72 * KB);
        put("/snap/core22/1033/usr/lib/libc.so", 200 * KB);  // the same snap mounted again
        put("/tmp/build.o", 8 * KB);
        put("/var/tmp/kept", 4 * KB);
        put("/var/lib/dpkg/status", 4 * KB);  // measured by nothing: part of the remainder
        Files::write(root + "/swap file", 96 * KB);
        Files::makeDirs(root + "/proc");
        Files::writeText(root + "/proc/swaps",
                         "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n"
                         "/swap\\040file                              file\t\t96\t\t0\t\t-2\n"
                         "/dev/vda3                               partition\t4194300\t\t100\t\t-3\n"
                         "/gone                                   file\t\t4096\t\t0\t\t-4\n");
        LinuxFixtures::script(bin, "journalctl", "[ \"$2\" = \"--directory=" + Files::bytes(root) + "/var/log/journal\" ] || exit 1\n"
                                                 "echo 'Archived and active journals take up 64.0K in the file system.'\n");
    }
    void put(const QString& path, qint64 size) {
        Files::makeDirs(root + path.section('/', 0, -2));
        Files::write(root + path, size);
        const QString top = path.startsWith("/var/") ? path.section('/', 0, path.startsWith("/var/cache/") ||
                                                                               path.startsWith("/var/lib/") ? 3 : 2)
                                                     : path.section('/', 0, 1);
        bytes[top] = Files::diskUsage(root + top);
    }
};

LinuxSystem sample(bool measured) {
    LinuxSystem s;
    s.measured = measured;
    s.folders = {{"/usr", 9000}, {"/opt", 700}, {"/boot", 300}, {"/var/log", 50}, {"/var/cache/apt", 100},
                 {"/var/cache/pacman/pkg", 400}, {"/var/lib/flatpak", 800}, {"/var/lib/snapd/snaps", 600},
                 {"/tmp", 20}, {"/var/tmp", 30}};
    s.partial = {"/var/log", "/usr"};
    s.journal = 2'000;
    s.swapFiles = 1'000;
    s.reserved = 5'000;
    return s;
}

const SystemPart* rowOf(const QList<SystemPart>& rows, const QString& name) { return findBy(rows, &SystemPart::name, name); }

}  // namespace

TEST_F(LinuxScanTest, TheSystemsOwnFoldersOnTheHomesDisk) {
    FixtureSystem fixture(system, bin);
    Files::makeDirs(Sandbox::home() + "/.config");
    WalkProgress progress;
    const LinuxSystem s = Scanner::measureSystem(Sandbox::home(), system, progress, {});
    EXPECT_TRUE(s.measured);
    QMap<QString, qint64> expected = fixture.bytes;
    expected.remove("/snap");
    expected.remove("/var/lib/dpkg");  // no row reads it
    expected.remove("/var/lib/snapd");
    expected["/var/lib/snapd/snaps"] = Files::diskUsage(system + "/var/lib/snapd/snaps");
    EXPECT_EQ(s.folders, expected);
    EXPECT_TRUE(s.partial.isEmpty());
    EXPECT_EQ(s.swapFiles, Files::allocated(system + "/swap file"));  // the file, not the partition
    EXPECT_EQ(s.journal, 64 * KB);
    EXPECT_GT(progress.files(), 10);

    // Swap files elsewhere or inside a measured folder count nothing.
    const QByteArray swaps = "Filename Type Size Used Priority\n/swap\\040file file 96 0 -2\n";
    EXPECT_EQ(Scanner::swapFilesOn(swaps, system, std::nullopt, {}), 0);
    EXPECT_EQ(Scanner::swapFilesOn(swaps, system, Walker::device(system), {system}), 0);
    EXPECT_EQ(Scanner::swapFilesOn(swaps, system, Walker::device(system), {}), s.swapFiles);
}

TEST_F(LinuxScanTest, AFolderTheUserCannotReadMakesItsRowAnEstimate) {
    FixtureSystem fixture(system, bin);
    Files::makeDirs(system + "/var/log/private/secret");
    Files::write(system + "/var/log/private/secret/x", 8 * KB);
    ::chmod(Files::bytes(system + "/var/log/private").constData(), 0700);
    if (!AsUser::canDrop()) GTEST_SKIP() << "cannot switch to an unprivileged user here";
    const auto partial = AsUser::run([&] {
        WalkProgress progress;
        return Scanner::measureSystem(Sandbox::home(), system, progress, {}).partial.join(',').toUtf8();
    });
    EXPECT_EQ(partial, QByteArray("/var/log"));
}

TEST(LinuxBreakdown, RowsForTheRootFileSystemAddUpToSystemData) {
    ScanData data;
    data.home = {"Home", Sandbox::home(), 0, true, {}, {}, {}};
    data.linuxSystem = sample(true);
    data.date = QDateTime::currentDateTimeUtc();
    const Volume volume{"/", 100'000, 70'000, 70'000};
    ScanResult r = Scanner::derive(data, volume);
    EXPECT_EQ(r.systemTotal, 30'000);
    QList<std::pair<QString, qint64>> named;
    for (const SystemPart& p : r.system) named.append({p.name, p.bytes});
    EXPECT_EQ(named, (QList<std::pair<QString, qint64>>{{"Not measured", 10'050},
                                                         {"Linux itself", 10'000},
                                                         {"Reserved for the administrator", 5'000},
                                                         {"System logs", 2'000},
                                                         {"Swap files", 1'000},
                                                         {"Flatpak apps and runtimes", 800},
                                                         {"Snaps", 600},
                                                         {"Package caches", 500},
                                                         {"Temporary files", 50}}));
    // Partial walks are estimates; where /var/log was partly read, the journal's figure stands.
    EXPECT_TRUE(rowOf(r.system, "Linux itself")->estimated);
    EXPECT_TRUE(rowOf(r.system, "System logs")->estimated);
    EXPECT_FALSE(rowOf(r.system, "Snaps")->estimated);
    EXPECT_TRUE(rowOf(r.system, "Not measured")->estimated);
    EXPECT_EQ(rowOf(r.system, "System logs")->action,
              "Logs the system keeps in /var/log; the journal takes " + Fmt::bytes(2'000) +
                  " of them. sudo journalctl --vacuum-size=500M trims it.");
    EXPECT_TRUE(rowOf(r.system, "Package caches")->action.contains("sudo paccache -r"));  // pacman's is the larger
    EXPECT_TRUE(rowOf(r.system, "Not measured")->action.startsWith("Folders only the administrator can read"));

    // More explained than used: the remainder is never negative, and a fixture home says why the
    // system is not measured.
    data.linuxSystem = sample(false);
    data.linuxSystem->journal.reset();
    r = Scanner::derive(data, {"/", 100'000, 90'000, 90'000});
    EXPECT_FALSE(rowOf(r.system, "Not measured"));
    EXPECT_EQ(rowOf(r.system, "System logs")->bytes, 50);
    EXPECT_EQ(rowOf(r.system, "System logs")->action, "Logs the system keeps in /var/log. The system rotates them by itself.");
    r = Scanner::derive(data, {"/", 1'000'000, 0, 0});
    EXPECT_TRUE(rowOf(r.system, "Not measured")->action.contains("does not measure for another home folder"));
}

TEST_F(LinuxScanTest, TheReportOfALinuxHomeWithAFixtureSystem) {
    FixtureSystem fixture(system, bin);
    const QString root = Sandbox::scratch("linuxhome");
    LinuxHome linux(root);
    linux.everything();
    const QByteArray home = "QUARLE_ROOT=" + Files::bytes(root);
    const QByteArray path = "PATH=" + qgetenv("PATH");
    // Under another root the user's XDG_CACHE_HOME is never followed.
    const Ran ran = runQuarle({"report"}, {home, path, "XDG_CACHE_HOME=/nonexistent/cache"});
    ASSERT_EQ(ran.status, 0) << ran.err.toStdString();
    const QString out = QString::fromUtf8(ran.out);
    for (const char* piece : {"~/.cache · 4 folders", "~/.config · 3 apps", "\nSystem Data: ", "  Linux itself ",
                              "the journal takes", "sudo apt clean", "  Swap files ", "  Temporary files ", " Photos "})
        EXPECT_TRUE(out.contains(piece)) << piece << "\n" << out.toStdString();
    EXPECT_FALSE(out.contains("macOS itself"));

    // Without a system of its own, a fixture home never reads this machine's.
    const Ran alone = runQuarle({"report", "--json"}, {home, path, "QUARLE_SYSTEM_ROOT="});
    ASSERT_EQ(alone.status, 0) << alone.err.toStdString();
    const auto json = parseJson(alone.out);
    ASSERT_TRUE(json);
    const QStringList names = fieldOf(json->toObject().value("system").toArray(), "name");
    EXPECT_FALSE(names.contains("Linux itself"));
    EXPECT_FALSE(names.contains("Temporary files"));
    EXPECT_TRUE(names.contains("App caches"));
}
