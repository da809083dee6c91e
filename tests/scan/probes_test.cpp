#include <gtest/gtest.h>

#include <chrono>

#include "scan/probes.h"
#include "support/files.h"
#include "support/sandbox.h"

namespace {

// A stand-in for a system tool: a shell script in a scratch folder.
QString fakeTool(const QByteArray& script) {
    const QString path = Sandbox::scratch("tool") + "/tool";
    Files::writeText(path, "#!/bin/sh\n" + script);
    ::chmod(Files::bytes(path).constData(), 0755);
    return path;
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

TEST(Probes, AMissingHangingOrChattyToolNeverHoldsTheScan) {
    // Missing tools (as on Linux) give nothing.
    EXPECT_EQ(Scanner::localSnapshots({"/usr/bin/tmutil-that-is-not-there"}), QStringList());
    EXPECT_FALSE(Scanner::unavailableSimulators({"/nonexistent/xcrun"}));

    // A tool that never ends is cut at its deadline.
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Scanner::localSnapshots({fakeTool("echo com.apple.TimeMachine.1.local; exec sleep 60\n")}, 0.5),
              QStringList());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));

    // A failing tool's output is not believed.
    EXPECT_EQ(Scanner::localSnapshots({fakeTool("echo com.apple.TimeMachine.1.local; exit 3\n")}), QStringList());

    // Megabytes of output (warnings on stderr too) are read to the end.
    const QString data = Sandbox::scratch("simdata");
    Files::write(data + "/f", 8192);
    const QString chatty = fakeTool(
        "i=0; while [ $i -lt 20000 ]; do echo 'warning: this line is here to fill the pipe of standard error' >&2; "
        "i=$((i+1)); done\n"
        "echo '{\"devices\":{\"iOS 12.0\":['\n"
        "i=0; while [ $i -lt 20000 ]; do echo '{\"name\":\"filler\",\"isAvailable\":true,\"dataPath\":\"/x\"},'; "
        "i=$((i+1)); done\n"
        "echo '{\"name\":\"iPhone X\",\"availabilityError\":\"gone\",\"dataPath\":\"" +
        Files::bytes(data) + "\"}]}}'\n");
    const auto sims = Scanner::unavailableSimulators({chatty}, 60);
    ASSERT_TRUE(sims);
    EXPECT_EQ(sims->id, "unavailablesims");
    ASSERT_EQ(sims->parts.size(), 1);
    EXPECT_EQ(sims->parts[0].note, "iOS 12.0");
    EXPECT_EQ(sims->bytes, Files::allocated(data + "/f"));
}
