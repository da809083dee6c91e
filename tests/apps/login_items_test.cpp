#include <gtest/gtest.h>

#include <unistd.h>

#include <QElapsedTimer>

#include "apps/login_items.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/lists.h"
#include "support/mac_apps.h"
#include "support/sandbox.h"

using Kind = LoginItem::Kind;

namespace {

const QString oldForm = QStringLiteral(
    "disabled services = {\n"
    "\t\"com.apple.ScreenReaderUIServer\" => true\n"
    "\t\"homebrew.mxcl.postgresql@14\" => true\n"
    "\t\"com.example.on\" => false\n"
    "}\n");

const QString newForm = QStringLiteral(
    "disabled services = {\r\n"
    "\t\"com.apple.ScreenReaderUIServer\" => disabled\r\n"
    "\t\"homebrew.mxcl.postgresql@14\" => disabled\r\n"
    "\t\"com.example.on\" => enabled\r\n"
    "}\r\n"
    "\r\n"
    "login item associations = {\r\n"
    "\t\"com.example.helper\" => com.example.Editor\r\n"
    "\t\"com.example.other\" => disabled\r\n"
    "}\r\n");

// A script at `path` that writes its arguments to path + ".args" and prints `output`.
void fakeLaunchctl(const QString& path, const QString& output, const QByteArray& extra = {}) {
    LinuxFixtures::text(path + ".out", output.toUtf8());
    LinuxFixtures::script(path.section('/', 0, -2), path.section('/', -1),
                          "echo \"$@\" > '" + path.toUtf8() + ".args'\n" + extra + "cat '" + path.toUtf8() + ".out'\n");
}

const LoginItem& item(const QList<LoginItem>& items, const QString& id) { return itemBy(items, &LoginItem::identifier, id); }

class LoginItemsTest : public ::testing::Test {
protected:
    void SetUp() override {
        Sandbox::clearHome();
        agents = Sandbox::home() + "/Library/LaunchAgents";
        system = SystemFolders::under(Sandbox::scratch("system"));
        tools = Sandbox::scratch("tools");
        Files::write(tools + "/postgres", 100);
        editor = MacApps::app(system.applications, "Editor.app", MacApps::info("com.example.Editor", "Editor"));

        using MacApps::writePlist;
        writePlist(agents + "/homebrew.mxcl.postgresql@14.plist",
                   {{"Label", "homebrew.mxcl.postgresql@14"}, {"ProgramArguments", QStringList{tools + "/postgres", "-D", "x"}},
                    {"RunAtLoad", true}});
        writePlist(agents + "/helper.plist",  // the file name need not be the label
                   {{"Label", "com.example.helper"}, {"AssociatedBundleIdentifiers", "com.example.Editor"},
                    {"BundleProgram", "Contents/MacOS/main"}});
        writePlist(agents + "/mach.plist", {{"Label", "com.example.mach"}, {"MachServices", QVariantMap{{"com.example.mach.xpc", true}}}},
                   MacApps::Form::binary);
        writePlist(agents + "/gone.plist", {{"Label", "net.gone.agent"}, {"Program", tools + "/agent"},
                                            {"ProgramArguments", QStringList{tools + "/postgres"}},
                                            {"AssociatedBundleIdentifiers", QStringList{"net.gone.App", "net.gone.Other"}}});
        writePlist(agents + "/on.plist", {{"Label", "com.example.on"}, {"Disabled", true}, {"ProgramArguments", QStringList{"sh", "-c", "true"}}});
        writePlist(agents + "/off.plist", {{"Label", "com.example.off"}, {"Disabled", true}, {"Program", "no-such-tool-for-quarle"}});
        writePlist(agents + "/lost.plist", {{"Label", "com.lost.helper"}, {"AssociatedBundleIdentifiers", "com.lost.App"},
                                            {"BundleProgram", "Contents/MacOS/helper"}});
        // Skipped: damaged, without a label, with an empty label, not a property list, a folder.
        Files::writeText(agents + "/damaged.plist", "<?xml version=\"1.0\"?><plist><dict><key>Label</key><str");
        writePlist(agents + "/nolabel.plist", {{"Program", "/bin/sh"}});
        writePlist(agents + "/emptylabel.plist", {{"Label", ""}, {"Program", "/bin/sh"}});
        writePlist(agents + "/array.plist.txt", {{"Label", "com.example.txt"}});
        Files::makeDirs(agents + "/folder.plist");

        writePlist(system.launchAgents + "/com.example.sys.plist",
                   {{"Label", "com.example.sys"}, {"ProgramArguments", QStringList{editor + "/Contents/MacOS/main"}}},
                   MacApps::Form::binary);
        writePlist(system.launchDaemons + "/com.example.daemon.plist", {{"Label", "com.example.daemon"}, {"Program", "/bin/sh"}});
    }
    QString agents, tools, editor;
    SystemFolders system;
};

}  // namespace

// Both forms launchctl prints are read by the listing tests below; here, what lies outside them.
TEST(LaunchctlOutput, OnlyTheDisabledServicesBlockCounts) {
    EXPECT_TRUE(LoginItems::parseDisabled("\"com.example.outside\" => disabled\n").isEmpty());
    EXPECT_TRUE(LoginItems::parseDisabled("").isEmpty());
    EXPECT_EQ(LoginItems::parseDisabled("disabled services = {\n\tno quotes => disabled\n\t\"odd\" => maybe\n"
                                        "\t\"with \"quotes\" inside\" => true\n"),
              (QHash<QString, bool>{{"with \"quotes\" inside", true}}))
        << "an unterminated block still counts what it holds";
}

TEST_F(LoginItemsTest, ListsTheJobsOfAllThreeFoldersWithTheirAppAndProgram) {
    fakeLaunchctl(system.launchctl, newForm);
    const QList<LoginItem> items = LoginItems::list(system);

    EXPECT_EQ(fieldOf(items, &LoginItem::identifier), (QStringList{"com.example.mach", "com.example.off", "com.example.on", "com.lost.helper", "com.example.helper",
                                  "homebrew.mxcl.postgresql@14", "net.gone.agent", "com.example.daemon", "com.example.sys"}))
        << "this user's first, then by name without regard to case";
    EXPECT_EQ(LinuxFixtures::contents(system.launchctl + ".args"), "print-disabled gui/" + QByteArray::number(::getuid()) + "\n");

    const LoginItem& helper = item(items, "com.example.helper");
    EXPECT_EQ(helper, (LoginItem{"Editor", "com.example.helper", "com.example", Kind::agent, true, agents + "/helper.plist",
                                  false, "Not signed", false, true}));

    const LoginItem& postgres = item(items, "homebrew.mxcl.postgresql@14");
    EXPECT_EQ(postgres, (LoginItem{"homebrew.mxcl.postgresql@14", "homebrew.mxcl.postgresql@14", "homebrew.mxcl", Kind::agent,
                                    false, agents + "/homebrew.mxcl.postgresql@14.plist", false, "Not signed", false, false}));

    const LoginItem& mach = item(items, "com.example.mach");
    EXPECT_FALSE(mach.missing) << "a job that runs no program of its own has nothing to miss";
    EXPECT_TRUE(mach.enabled);

    const LoginItem& gone = item(items, "net.gone.agent");
    EXPECT_TRUE(gone.missing) << "launchd runs Program, not the first of ProgramArguments";
    EXPECT_FALSE(gone.appStillThere);

    EXPECT_TRUE(item(items, "com.example.on").enabled) << "launchd's override beats the job's own Disabled key";
    EXPECT_FALSE(item(items, "com.example.on").missing) << "a bare name is found in launchd's search path";
    EXPECT_FALSE(item(items, "com.example.off").enabled);
    EXPECT_TRUE(item(items, "com.example.off").missing);
    EXPECT_TRUE(item(items, "com.lost.helper").missing) << "its program lived in an app that is gone";
    EXPECT_FALSE(item(items, "com.lost.helper").appStillThere);

    const LoginItem& sys = item(items, "com.example.sys");
    EXPECT_EQ(sys.name, "Editor") << "its program lies inside the installed Editor.app";
    EXPECT_TRUE(sys.appStillThere);
    EXPECT_TRUE(sys.needsAdmin);
    EXPECT_EQ(sys.scope(), "All users");

    const LoginItem& daemon = item(items, "com.example.daemon");
    EXPECT_EQ(daemon.kind, Kind::daemon);
    EXPECT_EQ(daemon.scope(), "All users, as root");
    EXPECT_EQ(daemon.path, system.launchDaemons + "/com.example.daemon.plist");
}

TEST_F(LoginItemsTest, OldLaunchctlOutputAndNoLaunchctlAtAll) {
    fakeLaunchctl(system.launchctl, oldForm);
    QList<LoginItem> items = LoginItems::list(system);
    EXPECT_FALSE(item(items, "homebrew.mxcl.postgresql@14").enabled);
    EXPECT_TRUE(item(items, "com.example.on").enabled);

    ::unlink(system.launchctl.toUtf8().constData());
    items = LoginItems::list(system);
    EXPECT_EQ(items.size(), 9) << "without launchctl the jobs are still listed";
    EXPECT_TRUE(item(items, "homebrew.mxcl.postgresql@14").enabled);
    EXPECT_FALSE(item(items, "com.example.on").enabled) << "the job's own Disabled key decides";
}

TEST_F(LoginItemsTest, ALaunchctlThatHangsIsGivenUpAfterFiveSeconds) {
    fakeLaunchctl(system.launchctl, oldForm, "sleep 60\n");
    QElapsedTimer timer;
    timer.start();
    const QList<LoginItem> items = LoginItems::list(system);
    EXPECT_LT(timer.elapsed(), 30'000);
    EXPECT_EQ(items.size(), 9);
    EXPECT_TRUE(item(items, "homebrew.mxcl.postgresql@14").enabled);
}
