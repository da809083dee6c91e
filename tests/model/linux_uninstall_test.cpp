// Uninstalling the apps of a Linux desktop through the model: a Flatpak of the user's installation
// by flatpak's own command (its ticked leftovers to the Trash), one of the system's installation
// refused, an AppImage to the Trash with the desktop entry and icon that put it in the menu; neither
// while it runs.

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>

#include "apps/app_scanner.h"
#include "apps/flatpak_apps.h"
#include "core/home.h"
#include "model_fixture.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

namespace {

using namespace ModelTest;

class LinuxUninstall : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        const QString home = Sandbox::home();
        system = SystemFolders::current();  // the sandbox's stand-in for /
        Files::removeTree(system.flatpak);
        LinuxFixtures::flatpak(FlatpakApps::userInstallation(), {"org.example.Notes", "Notes", "notes", "", "", 80'000});
        LinuxFixtures::text(home + "/.var/app/org.example.Notes/data/notes.db", QByteArray(5000, 'n'));
        LinuxFixtures::flatpak(system.flatpak, {"org.example.Shared", "Shared", "shared", "", "", 60'000});
        appImage = LinuxFixtures::elf(home + "/Applications/Paint-2.1-x86_64.AppImage");
        entry = LinuxFixtures::desktopEntry(home + "/.local/share/applications/appimagekit_1f2e-paint.desktop",
                                            {"Type=Application", "Name=Paint", "Exec=" + appImage + " %F", "Icon=paint"});
        icon = LinuxFixtures::text(home + "/.local/share/icons/hicolor/64x64/apps/paint.png", "png");

        bin = Sandbox::scratch("bin");
        log = bin + "/flatpak.log";
        LinuxFixtures::script(bin, "flatpak", "[ \"$1\" = uninstall ] && echo \"$*\" >> '" + Files::bytes(log) + "'\nexit 0\n");
        path = std::make_unique<LinuxFixtures::ScopedEnv>("PATH", Files::bytes(bin) + ":" + qgetenv("PATH"));
    }

    ModelServices services() {
        ModelServices s = machine.services();
        s.scanApps = [system = system](const Cancelled& cancelled) { return AppScanner::scan(cancelled, system); };
        return s;
    }

    static InstalledApp named(const Model& model, const QString& name) {
        for (const InstalledApp& a : model.apps())
            if (a.name == name) return a;
        ADD_FAILURE() << "no app " << name.toStdString();
        return {};
    }

    Machine machine;
    SystemFolders system;
    QString appImage, entry, icon, bin, log;
    std::unique_ptr<LinuxFixtures::ScopedEnv> path;
};

TEST_F(LinuxUninstall, AUserFlatpakIsRemovedByFlatpakAndItsLeftoversGoToTheTrash) {
    Model model(services());
    model.loadApps();
    ASSERT_TRUE(waitFor([&] { return model.appsLoaded(); }));
    const InstalledApp notes = named(model, "Notes");
    model.focusApp(notes);
    ASSERT_TRUE(model.leftoverTicks().contains(Home::at(".var/app/org.example.Notes")));

    machine.running->insert("org.example.Notes");
    model.askUninstall(notes);
    EXPECT_FALSE(model.confirm());
    EXPECT_EQ(model.toast(), std::optional<QString>("Quit Notes first, then uninstall it."));
    machine.running->clear();

    model.askUninstall(notes);
    ASSERT_TRUE(model.confirm());
    ASSERT_EQ(model.confirm()->findings.size(), 1);
    EXPECT_EQ(model.confirm()->findings[0].removal,
              Removal::command({"flatpak", "uninstall", "--user", "-y", "org.example.Notes"}));
    EXPECT_FALSE(model.confirm()->paths.contains(notes.path)) << "flatpak's own files are never trashed";
    const ActionReport report = performed(model);
    EXPECT_TRUE(report.ok()) << report.toast.toStdString();
    EXPECT_EQ(LinuxFixtures::contents(log), "uninstall --user -y org.example.Notes\n");
    EXPECT_FALSE(Files::exists(Home::at(".var/app/org.example.Notes")));
    QStringList states;
    for (const HistoryEntry& e : model.history()) states.append(e.title + ":" + rawValue(e.state));
    EXPECT_TRUE(states.contains("Uninstall Notes:permanent")) << states.join(", ").toStdString();
    EXPECT_TRUE(states.contains("Uninstall Notes:inTrash")) << "the leftovers can come back";
}

TEST_F(LinuxUninstall, ASystemFlatpakIsRefusedAndAnAppImageTakesItsMenuEntryAlong) {
    Model model(services());
    model.loadApps();
    ASSERT_TRUE(waitFor([&] { return model.appsLoaded(); }));

    model.askUninstall(named(model, "Shared"));
    EXPECT_FALSE(model.confirm());
    ASSERT_TRUE(model.toast());
    EXPECT_TRUE(model.toast()->contains("needs an administrator")) << model.toast()->toStdString();
    EXPECT_TRUE(LinuxFixtures::contents(log).isEmpty());

    const InstalledApp paint = named(model, "Paint");
    model.focusApp(paint);
    machine.running->insert(appImage);  // its runtime serves the app's files from the AppImage
    model.askUninstall(paint);
    EXPECT_FALSE(model.confirm());
    EXPECT_EQ(model.toast(), std::optional<QString>("Quit Paint first, then uninstall it."));
    machine.running->clear();
    model.askUninstall(paint);
    ASSERT_TRUE(model.confirm());
    EXPECT_TRUE(model.confirm()->findings.isEmpty());
    for (const QString& p : {appImage, entry, icon}) EXPECT_TRUE(model.confirm()->paths.contains(p)) << p.toStdString();
    const ActionReport report = performed(model);
    EXPECT_TRUE(report.ok()) << report.toast.toStdString();
    for (const QString& p : {appImage, entry, icon}) EXPECT_FALSE(Files::exists(p)) << p.toStdString();
    ASSERT_FALSE(model.history().isEmpty());
    EXPECT_EQ(model.history().first().moved.size(), 3);
}

TEST(RunningFiles, TheMachineSeesTheFileAProcessRuns) {
    const QString exe = Sandbox::scratch("apps") + "/Clock 1.0.AppImage";
    ASSERT_TRUE(QFile::copy("/bin/sleep", exe));
    QFile(exe).setPermissions(QFile(exe).permissions() | QFileDevice::ExeOwner);
    EXPECT_FALSE(ModelServices::real().runningFiles().contains(exe));
    QProcess clock;
    clock.start(exe, {"30"});
    ASSERT_TRUE(clock.waitForStarted());
    EXPECT_TRUE(ModelServices::real().runningFiles().contains(exe));
    clock.kill();
    clock.waitForFinished();
}

}  // namespace
