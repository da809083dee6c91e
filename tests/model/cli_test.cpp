// The command line on the model, run as a user runs it, on fixture homes and the demonstration.

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

#include "core/fmt.h"
#include "core/home.h"
#include "core/json.h"
#include "core/paths.h"
#include "core/prefs.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/lists.h"
#include "support/mac_apps.h"
#include "support/mac_home.h"
#include "support/run_quarle.h"
#include "support/sandbox.h"

namespace {

QByteArray b(const QString& s) { return Paths::toBytes(s); }

QJsonObject jsonOf(const Ran& ran) {
    const std::optional<QJsonValue> v = parseJson(ran.out);
    EXPECT_TRUE(v && v->isObject()) << ran.out.constData() << ran.err.constData();
    return v ? v->toObject() : QJsonObject();
}

QStringList idsOf(const QJsonArray& findings) { return fieldOf(findings, "id"); }

class Clean : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        home.everything();
    }
    bool there(const QString& relative) const { return Files::exists(home.at(relative)); }

    MacHome home{Sandbox::home()};
};

TEST_F(Clean, ADryRunShowsTheConfirmationAndTouchesNothing) {
    const Ran ran = runQuarle({"clean", "--dry-run"});
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains(" to move to the Trash\n")) << ran.out.constData();
    EXPECT_TRUE(ran.out.contains("App caches  ~/Library/Caches"));
    EXPECT_TRUE(ran.out.contains("Kept from Xcode build data: Projects built in the last 7 days start unticked.\n"));
    EXPECT_TRUE(ran.out.contains("  Quarle  (changed yesterday)")) << "the recent project, kept";
    EXPECT_FALSE(ran.out.contains("[y/N]"));
    EXPECT_TRUE(there("Library/Caches/com.spotify.client/index"));
    EXPECT_FALSE(Files::exists(Home::trashFolder()));
}

TEST_F(Clean, ItAsksUnlessToldYesAndPrintsTheToast) {
    Ran ran = runQuarle({"clean", "logs"}, {}, "n\n");
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.out.contains("Move 29 KB to the Trash? History can restore it for 7 days. [y/N] \nNothing was removed.\n"))
        << ran.out.constData();
    EXPECT_TRUE(there("Library/Logs/install.log"));
    ran = runQuarle({"clean", "logs"});  // no answer at all is a no
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(there("Library/Logs/install.log"));

    ran = runQuarle({"clean", "logs"}, {}, "y\n");
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains("Logs and crash reports — 29 KB to move to the Trash\n")) << ran.out.constData();
    EXPECT_TRUE(ran.out.contains("\nMoved 29 KB to the Trash. History can restore it for 7 days.\nHistory entry: "));
    EXPECT_FALSE(there("Library/Logs/install.log"));
    EXPECT_TRUE(there("Library/Caches/com.spotify.client/index")) << "only the row named";

    ran = runQuarle({"clean", "--yes", "--free-now", "caches"});
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains("\nFreed ")) << ran.out.constData();
    EXPECT_FALSE(there("Library/Caches/com.spotify.client/index"));
}

TEST_F(Clean, JsonHoldsTheConfirmationAndWhatWasKept) {
    EXPECT_EQ(runQuarle({"clean", "--json"}).status, 2) << "a script cannot answer the question";
    const Ran look = runQuarle({"clean", "--json", "--dry-run"});
    EXPECT_EQ(look.status, 0);
    const QJsonObject dry = jsonOf(look);
    const QJsonObject confirm = dry.value("confirm").toObject();
    const QStringList rows = idsOf(confirm.value("findings").toArray());
    EXPECT_TRUE(rows.contains("caches"));
    EXPECT_TRUE(rows.contains("derived"));
    EXPECT_FALSE(rows.contains("archives")) << "a Your call row";
    qint64 sum = 0;
    for (const QJsonValue& f : confirm.value("findings").toArray()) sum += f.toObject().value("bytes").toInteger();
    EXPECT_EQ(confirm.value("bytes").toInteger(), sum);
    EXPECT_EQ(confirm.value("title").toString(), Fmt::count(rows.size(), "item"));
    const QJsonArray kept = dry.value("kept").toArray();
    ASSERT_FALSE(kept.isEmpty());
    EXPECT_EQ(kept.first().toObject().value("id").toString(), "derived");
    EXPECT_EQ(kept.first().toObject().value("note").toString(), "Projects built in the last 7 days start unticked.");
    EXPECT_FALSE(dry.contains("toast"));

    const QJsonObject done = jsonOf(runQuarle({"clean", "--json", "--yes", "--developer"}));
    EXPECT_TRUE(done.value("toast").toString().startsWith("Moved ")) << done.value("toast").toString().toStdString();
    EXPECT_EQ(done.value("entry").toString().size(), 36);
    for (const QString& id : idsOf(done.value("confirm").toObject().value("findings").toArray()))
        EXPECT_NE(id, "caches") << "the Developer page's rows only";
    EXPECT_TRUE(there("Library/Caches/com.spotify.client/index"));
    EXPECT_FALSE(there("Library/Caches/Homebrew/downloads/wget.bottle.tar.gz"));
    EXPECT_TRUE(there("Library/Developer/Xcode/DerivedData/Quarle-bqzmhxjtcvwdkfnlgyepsaruoiyk/Build/Products/app"))
        << "the project built yesterday is kept";
}

TEST_F(Clean, RowsNamedAreClearedAsTheirButtonsWould) {
    Ran ran = runQuarle({"clean", "archives", "--dry-run"});
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.startsWith("Xcode archives — ")) << "named, its recent archive is chosen too: "
                                                          << ran.out.constData();
    ran = runQuarle({"clean", "archives", "logs", "--dry-run"});
    EXPECT_TRUE(ran.out.startsWith("2 items — ")) << ran.out.constData();

    ran = runQuarle({"clean", "nosuchrow"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.startsWith("quarle: there is no row \"nosuchrow\" to clear. Rows: ")) << ran.err.constData();
    ran = runQuarle({"clean", "backups", "--yes"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.err.startsWith("quarle: iPhone and iPad backups is only listed: Quarle doesn't remove it."))
        << ran.err.constData();
    EXPECT_EQ(runQuarle({"clean", "--bogus"}).status, 2);

    // Parts excluded for good in Settings stay, even in a row named.
    Prefs::setValue("neverClear", QStringList{home.at("Library/Logs/DiagnosticReports"), home.at("Library/Logs/fsck_hfs.log"),
                                              home.at("Library/Logs/install.log")});
    ran = runQuarle({"clean", "logs", "--yes"});
    Prefs::setValue("neverClear", QStringList());
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "quarle: Nothing in Logs and crash reports is ticked.\n");
    EXPECT_TRUE(there("Library/Logs/install.log"));
    EXPECT_TRUE(there("Library/Application Support/MobileSync/Backup/00008110-001A2B3C4D5E6F70/Manifest.db"));
}

TEST_F(Clean, AnotherRootIsClearedIntoItsOwnTrash) {
    const QString other = Sandbox::scratch("other");
    MacHome(other).logs();
    Ran ran = runQuarle({"clean", "--yes"}, {"QUARLE_ROOT=" + b(other)});
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains("Moved 29 KB to the Trash.")) << ran.out.constData();
    EXPECT_FALSE(Files::exists(other + "/Library/Logs/install.log"));
    EXPECT_TRUE(Files::exists(other + "/.local/share/Trash/files/install.log")) << "the other home's own Trash";
    EXPECT_TRUE(there("Library/Logs/install.log"));
}

TEST(HistoryVerbs, EmptyAllAndKeepDaysAskThroughTheModel) {
    Sandbox::clearHome();
    const QString home = Sandbox::home();
    Files::makeDirs(home + "/Library/Caches/a");
    Files::write(home + "/Library/Caches/a/blob", 20'000);
    const QByteArray size = Paths::toBytes(Fmt::bytes(Files::diskUsage(home + "/Library/Caches/a")));
    EXPECT_EQ(runQuarle({"empty", "--all"}).out, "Nothing of Quarle's is in the Trash.\n");
    ASSERT_EQ(runQuarle({"trash", b(home + "/Library/Caches/a")}).status, 0);

    Ran ran = runQuarle({"empty", "--all"}, {}, "no\n");
    EXPECT_EQ(ran.status, 1);
    EXPECT_TRUE(ran.out.startsWith("Empty " + size + " from the Trash?\n1 item Quarle moved will be deleted for good."))
        << ran.out.constData();
    EXPECT_TRUE(ran.out.endsWith("Empty for good? [y/N] \nNothing was emptied.\n"));
    ran = runQuarle({"empty", "--all"}, {}, "yes\n");
    EXPECT_EQ(ran.status, 0);
    EXPECT_TRUE(ran.out.endsWith("Emptied " + size + ". It's free space now.\n")) << ran.out.constData();

    EXPECT_EQ(runQuarle({"keep-days"}).out, "Quarle keeps its items in the Trash for 7 days.\n");
    EXPECT_EQ(runQuarle({"keep-days", "soon"}).status, 2);
    EXPECT_EQ(runQuarle({"keep-days", "30"}).out, "Quarle keeps its items in the Trash for 30 days.\n");
    EXPECT_EQ(runQuarle({"keep-days", "0"}).out, "Quarle keeps its items in the Trash until you empty it.\n");
    EXPECT_EQ(runQuarle({"keep-days", "7", "--yes"}).status, 0);
    EXPECT_EQ(runQuarle({"keep-days"}, {"QUARLE_DEMO=1"}).status, 0);
}

class AppVerbs : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        home = Sandbox::home();
        system = Sandbox::scratch("system");
        Files::makeDirs(system + "/Applications");
        MacApps::app(home + "/Applications", "Editor.app", MacApps::info("com.example.Editor", "Editor"));
        MacApps::libraryFolder(home, "Caches", "com.example.Editor", 30'000);
        MacApps::libraryFolder(home, "Application Support", "Editor Stuff", 10'000);
        MacApps::libraryFolder(home, "Caches", "org.gone.Gone", 9'000);
        MacApps::libraryFile(home, "Preferences", "org.gone.Gone.plist");  // it ran here
        bin = Sandbox::scratch("bin");
    }

    Ran run(const QList<QByteArray>& args, const QByteArray& input = {}, const QByteArray& running = {}) {
        // A `flatpak` that reports the running app, if any.
        LinuxFixtures::script(bin, "flatpak", "[ \"$1\" = ps ] && printf 'Application\\n" + running + "\\n'\nexit 0\n");
        return runQuarle(args, {"QUARLE_SYSTEM_ROOT=" + b(system), "PATH=" + b(bin) + ":/usr/bin:/bin"}, input);
    }

    QString home, system, bin;
};

TEST_F(AppVerbs, UninstallShowsWhatGoesAsksAndMovesTheSureOnes) {
    const QString app = home + "/Applications/Editor.app";
    Ran ran = run({"uninstall", "Nobody"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "quarle: no app is called \"Nobody\". \"quarle apps\" lists them.\n");

    ran = run({"uninstall", "editor", "--yes"}, {}, "com.example.Editor");
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "quarle: Quit Editor first, then uninstall it.\n");
    EXPECT_TRUE(Files::exists(app));

    ran = run({"uninstall", "Editor", "--dry-run"});
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains("Left behind, removed with it:\n")) << ran.out.constData();
    EXPECT_TRUE(ran.out.contains("~/Library/Caches/com.example.Editor"));
    EXPECT_TRUE(ran.out.contains("\nUninstall Editor — "));
    EXPECT_TRUE(Files::exists(app));

    ran = run({"uninstall", "com.example.Editor"}, "y\n");
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains("to the Trash. History can restore it for 7 days.\n")) << ran.out.constData();
    EXPECT_FALSE(Files::exists(app)) << "its leftovers and History entry: Apps.Uninstalling in apps_test";
}

TEST_F(AppVerbs, OrphansAreRemovedOnlyWithTheirLeftoversTicked) {
    Ran ran = run({"orphans"});
    ASSERT_TRUE(ran.out.contains("org.gone.Gone")) << ran.out.constData();
    const QString name = QString::fromUtf8(ran.out.left(ran.out.indexOf(" — ")));
    ran = run({"orphans", "--remove", b(name), "--yes"});
    if (ran.status == 1) {
        EXPECT_EQ(ran.err, "quarle: Nothing of " + b(name) + " is ticked.\n") << "no leftover is sure";
        ran = run({"orphans", "--remove", b(name), "--yes", "--all-leftovers"});
    }
    EXPECT_EQ(ran.status, 0) << ran.err.constData();
    EXPECT_TRUE(ran.out.contains("Leftovers of " + b(name) + " — ")) << ran.out.constData();
    EXPECT_FALSE(Files::exists(home + "/Library/Caches/org.gone.Gone"));
    EXPECT_EQ(run({"orphans", "--remove"}).status, 2);
    ran = run({"orphans", "--remove", "Sketch", "--yes"}, {});
    EXPECT_EQ(ran.status, 1);
    const Ran demo = runQuarle({"orphans", "--remove", "Sketch", "--yes"}, {"QUARLE_DEMO=1"});
    EXPECT_EQ(demo.status, 0) << demo.err.constData();
    EXPECT_TRUE(demo.out.endsWith("Demo Mac: nothing was removed.\n"));
}

}  // namespace
