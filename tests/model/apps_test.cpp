// The Apps page through the model: loading, focus and leftover ticks, uninstalling (refused while the
// app runs: linux_uninstall_test), orphans, and a list that went stale while it loaded.

#include <gtest/gtest.h>

#include "apps/app_scanner.h"
#include "core/home.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/mac_apps.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

Leftover leftover(const QString& relative, qint64 bytes, Confidence confidence) {
    return {Home::at(relative), bytes, "because", confidence};
}

InstalledApp app(const QString& name, const QString& bundleID, QList<Leftover> leftovers) {
    return {name, bundleID, Home::at("Applications/" + name + ".app"), 1'000, std::nullopt, "Maker", std::move(leftovers)};
}

class Apps : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        listed->apps = {app("Editor", "com.example.Editor",
                            {leftover("Library/Caches/com.example.Editor", 300, Confidence::sure),
                             leftover("Library/Application Support/Editor", 200, Confidence::likely),
                             leftover("Library/Preferences/editor.txt", 100, Confidence::yours)}),
                        app("Viewer", "com.example.Viewer", {})};
        listed->orphans = {{"Gone", "com.gone.Gone",
                            {leftover("Library/Caches/com.gone.Gone", 50, Confidence::likely),
                             leftover("Library/Logs/Gone", 70, Confidence::likely)}}};
    }

    ModelServices services() {
        ModelServices s = machine.services();
        s.scanApps = [listed = listed, loads = loads](const Cancelled&) {
            ++*loads;
            return *listed;
        };
        return s;
    }

    Machine machine;
    std::shared_ptr<AppScanner::Result> listed = std::make_shared<AppScanner::Result>();
    std::shared_ptr<std::atomic<int>> loads = std::make_shared<std::atomic<int>>(0);
};

TEST_F(Apps, FocusTicksTheSureLeftoversAndTheUninstallSheetTakesThem) {
    Model model(services());
    model.loadApps();
    EXPECT_TRUE(model.appsLoading());
    ASSERT_TRUE(waitFor([&] { return model.appsLoaded(); }));
    EXPECT_FALSE(model.appsLoading());
    ASSERT_EQ(model.apps().size(), 2);
    const InstalledApp editor = model.apps().first();
    EXPECT_TRUE(model.defaultTicks(std::nullopt).isEmpty());
    model.focusApp(editor);
    EXPECT_EQ(model.appFocus(), std::optional<QString>(editor.path));
    EXPECT_EQ(model.leftoverTicks(), QSet<QString>{editor.leftovers[0].path});
    model.toggleLeftover(editor.leftovers[1].path);
    model.setPage(Page::apps);
    model.trashCurrent();
    ASSERT_TRUE(model.confirm());
    EXPECT_EQ(model.confirm()->title, "Uninstall Editor");
    EXPECT_EQ(model.confirm()->paths, (QStringList{editor.path, editor.leftovers[0].path, editor.leftovers[1].path}));
    EXPECT_EQ(model.confirm()->bytes, 1'500);
    EXPECT_EQ(model.confirm()->apps, QSet<QString>{editor.path});
}

TEST_F(Apps, AnOrphanWithNothingTickedCannotBeRemoved) {
    Model model(services());
    model.loadApps();
    ASSERT_TRUE(waitFor([&] { return model.appsLoaded(); }));
    const Orphan gone = model.orphans().first();
    model.focusOrphan(gone);
    EXPECT_EQ(model.orphanFocus(), std::optional<QString>("Gone"));
    EXPECT_EQ(model.appFocus(), std::nullopt);
    EXPECT_TRUE(model.leftoverTicks().isEmpty()) << "no leftover is sure";
    model.askRemoveOrphan(gone);
    EXPECT_FALSE(model.confirm());
    EXPECT_EQ(model.toast(), std::optional<QString>("Nothing of Gone is ticked."));
    model.toggleLeftover(gone.leftovers[1].path);
    model.setPage(Page::apps);
    model.trashCurrent();
    ASSERT_TRUE(model.confirm());
    EXPECT_EQ(model.confirm()->title, "Leftovers of Gone");
    EXPECT_EQ(model.confirm()->paths, QStringList{gone.leftovers[1].path});
    EXPECT_EQ(model.confirm()->bytes, 70);
}

TEST_F(Apps, ARemovalFinishingWhileTheListLoadsMakesItLoadAgain) {
    const QString junk = Home::at("junk");
    Files::write(junk, 4'000);
    Model model(services());
    model.landings().hold(Job::apps);
    model.loadApps();
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::apps) == 1; }));
    const qint64 changes = model.appsChanges();
    model.askTrash(junk, "junk", 4'000);
    ASSERT_TRUE(model.confirm());
    performed(model);
    EXPECT_GT(model.appsChanges(), changes);

    model.landings().release(Job::apps);  // loaded before the removal finished
    EXPECT_TRUE(model.apps().isEmpty()) << "a list that may be stale is not shown";
    EXPECT_FALSE(model.appsLoaded());
    EXPECT_TRUE(model.appsLoading()) << "it loads again";
    ASSERT_TRUE(waitFor([&] { return model.landings().waiting(Job::apps) == 1; }));
    model.landings().release(Job::apps);
    EXPECT_TRUE(model.appsLoaded());
    EXPECT_EQ(model.apps().size(), 2);
    EXPECT_EQ(*loads, 2);
}

TEST_F(Apps, UninstallingMovesTheAppAndItsTickedLeftoversAndTheFocusMovesOn) {
    const QString home = Sandbox::home();
    const SystemFolders system = SystemFolders::under(Sandbox::scratch("system"));
    Files::makeDirs(system.applications);
    MacApps::app(home + "/Applications", "Editor.app", MacApps::info("com.example.Editor", "Editor"), MacApps::Form::xml, 400'000);
    MacApps::app(home + "/Applications", "Viewer.app", MacApps::info("org.viewer.Viewer", "Viewer"));
    MacApps::libraryFolder(home, "Caches", "com.example.Editor", 90'000);
    MacApps::libraryFile(home, "Preferences", "com.example.Editor.plist");
    ModelServices s = machine.services();
    s.scanApps = [system](const Cancelled& cancelled) { return AppScanner::scan(cancelled, system); };
    Model model(s);
    model.loadApps();
    ASSERT_TRUE(waitFor([&] { return model.appsLoaded(); }));
    ASSERT_EQ(model.apps().size(), 2);
    const InstalledApp editor = model.apps().first();
    ASSERT_EQ(editor.name, "Editor");
    model.focusApp(editor);
    const QSet<QString> ticked = model.leftoverTicks();
    ASSERT_FALSE(ticked.isEmpty());
    model.askUninstall(editor);
    ASSERT_TRUE(model.confirm());
    const ActionReport report = performed(model);
    EXPECT_TRUE(report.ok()) << report.toast.toStdString();
    ASSERT_TRUE(waitFor([&] { return !model.appsLoading(); }));
    EXPECT_FALSE(Files::exists(editor.path));
    for (const QString& path : ticked) EXPECT_FALSE(Files::exists(path));
    ASSERT_EQ(model.history().size(), 1);
    EXPECT_EQ(model.history().first().title, "Uninstall Editor");
    EXPECT_EQ(model.history().first().moved.size(), 1 + ticked.size());
    ASSERT_EQ(model.apps().size(), 1) << "the list was loaded again";
    EXPECT_EQ(model.appFocus(), std::optional<QString>(model.apps().first().path)) << "the focus moved to the next app";
}

TEST_F(Apps, InstallerAppsAreTheMacOSInstallersInApplications) {
    Finding installers = row("macosinstallers", Bucket::call,
                             {part("/Applications/Install macOS Sonoma.app", 10, *machine.clock),
                              part(Home::at("Applications/Install macOS Ventura.app"), 10, *machine.clock)});
    Finding other = row("caches", Bucket::now, {part("/Applications/Other.app", 10, *machine.clock)});
    EXPECT_EQ(Model::installerApps({installers, other}), QSet<QString>{"/Applications/Install macOS Sonoma.app"});
}

TEST_F(Apps, LoginItemsLoadInTheBackground) {
    ModelServices s = machine.services();
    s.loginItems = [] {
        LoginItem helper;
        helper.name = "Helper";
        helper.identifier = "com.example.helper";
        return QList<LoginItem>{helper};
    };
    Model model(s);
    model.loadLoginItems();
    ASSERT_TRUE(waitFor([&] { return !model.loginItems().isEmpty(); }));
    EXPECT_EQ(model.loginItems().first().identifier, "com.example.helper");
}

}  // namespace
