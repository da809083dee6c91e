#include <gtest/gtest.h>


#include "scan/probes.h"
#include "support/files.h"
#include "support/linux_apps.h"
#include "support/sandbox.h"

namespace {

// A stand-in for a system tool: a shell script in a scratch folder.
QString fakeTool(const QByteArray& script) {
    return LinuxFixtures::script(Sandbox::scratch("tool"), "tool", script);
}

}  // namespace

TEST(Snapshots, NamesFromTheShapesMachinesPrint) {
    EXPECT_EQ(Scanner::parseSnapshots(""), QStringList());
    EXPECT_EQ(Scanner::parseSnapshots("Snapshots for disk /:\n"), QStringList());
    EXPECT_EQ(Scanner::parseSnapshots("Snapshots for disk /:\ncom.apple.TimeMachine.2024-05-01-101010.local\n"
                                      "com.apple.TimeMachine.2024-05-02-111111.local\n"),
              QStringList({"com.apple.TimeMachine.2024-05-01-101010.local", "com.apple.TimeMachine.2024-05-02-111111.local"}));
    // Older systems print no header; some mark snapshots without data; other vendors' snapshots
    // are not Time Machine's.
    EXPECT_EQ(Scanner::parseSnapshots("com.apple.TimeMachine.2024-05-01-101010.local (dataless)\r\n"
                                      "com.bombich.ccc.2024-05-01-090000\n"
                                      "com.carbonite.snapshot.1\n"
                                      "  com.apple.TimeMachine.2024-05-03-121212\n"),
              QStringList({"com.apple.TimeMachine.2024-05-01-101010.local", "com.apple.TimeMachine.2024-05-03-121212"}));
    EXPECT_EQ(Scanner::parseSnapshots("Local snapshots for volume Macintosh HD - Data:\n"
                                      "Snapshot: com.apple.TimeMachine.2024-06-01-000000.local\n"),
              QStringList({"com.apple.TimeMachine.2024-06-01-000000.local"}));
}

TEST(Simulators, UnavailableDevicesFromTheShapesSimctlPrints) {
    const QString json = R"(xcrun: warning: something about the toolchain
{
  "devices" : {
    "com.apple.CoreSimulator.SimRuntime.iOS-15-5" : [
      {
        "dataPath" : "\/Users\/robin\/Library\/Developer\/CoreSimulator\/Devices\/AAA\/data",
        "availabilityError" : "runtime profile not found",
        "isAvailable" : false,
        "name" : "iPhone 8",
        "udid" : "AAA"
      },
      { "name" : "iPhone 8 Plus", "availabilityError" : "runtime profile not found", "udid" : "BBB" }
    ],
    "watchOS 8.5" : [
      { "dataPath" : "/Users/robin/Library/Developer/CoreSimulator/Devices/CCC/data", "isAvailable" : false,
        "name" : "Apple Watch Series 7" }
    ],
    "com.apple.CoreSimulator.SimRuntime.iOS-17-2" : [
      { "dataPath" : "/Users/robin/x", "isAvailable" : true, "name" : "iPhone 15" }
    ]
  }
})";
    const QList<Scanner::Simulator> sims = Scanner::parseUnavailableSimulators(json);
    ASSERT_EQ(sims.size(), 2);  // one without a data folder, one available
    EXPECT_EQ(sims[0], (Scanner::Simulator{"iPhone 8", "iOS 15.5", "/Users/robin/Library/Developer/CoreSimulator/Devices/AAA/data"}));
    EXPECT_EQ(sims[1].runtime, "watchOS 8.5");
    EXPECT_EQ(Scanner::parseUnavailableSimulators(R"({"devices" : {}})"), QList<Scanner::Simulator>());
    EXPECT_EQ(Scanner::parseUnavailableSimulators("xcrun: error: unable to find utility \"simctl\""), QList<Scanner::Simulator>());
    EXPECT_EQ(Scanner::parseUnavailableSimulators(R"({"devices" : [}})"), QList<Scanner::Simulator>());
}

// Deadlines, failures and output of any size are the shell's (see shell_test); here what the probes
// make of a tool's answer, or of no tool at all.
TEST(Probes, AMissingOrFailingToolGivesNothingAndSimulatorsAreMeasured) {
    EXPECT_EQ(Scanner::localSnapshots({"/usr/bin/tmutil-that-is-not-there"}), QStringList());
    EXPECT_FALSE(Scanner::unavailableSimulators({"/nonexistent/xcrun"}));
    EXPECT_EQ(Scanner::localSnapshots({fakeTool("echo com.apple.TimeMachine.1.local; exit 3\n")}), QStringList());

    const QString data = Sandbox::scratch("simdata");
    Files::write(data + "/f", 8192);
    const auto sims = Scanner::unavailableSimulators({fakeTool(
        "echo '{\"devices\":{\"iOS 12.0\":[{\"name\":\"iPhone X\",\"availabilityError\":\"gone\",\"dataPath\":\"" +
        Files::bytes(data) + "\"}]}}'\n")});
    ASSERT_TRUE(sims);
    EXPECT_EQ(sims->id, "unavailablesims");
    ASSERT_EQ(sims->parts.size(), 1);
    EXPECT_EQ(sims->parts[0].note, "iOS 12.0");
    EXPECT_EQ(sims->bytes, Files::diskUsage(data));
}
