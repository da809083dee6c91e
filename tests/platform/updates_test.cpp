#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QObject>
#include <QStandardPaths>
#include <QThread>

#include "platform/updates.h"

namespace {

const char* fromMirror = R"(quarle:
  Installed: 0.1
  Candidate: 0.2
  Version table:
     0.2 500
        500 http://deb.example.org bookworm/main amd64 Packages
 *** 0.1 100
        100 /var/lib/dpkg/status
)";

const char* fromFile = R"(quarle:
  Installed: 0.1
  Candidate: 0.1
  Version table:
 *** 0.1 100
        100 /var/lib/dpkg/status
)";

TEST(Updates, PolicyAndSentences) {
    const Updates::Policy newer = Updates::parsePolicy(fromMirror);
    EXPECT_EQ(newer.installed, "0.1");
    EXPECT_EQ(newer.candidate, "0.2");
    EXPECT_TRUE(newer.fromRepository);
    const Updates::Policy file = Updates::parsePolicy(fromFile);
    EXPECT_EQ(file.candidate, "0.1");
    EXPECT_FALSE(file.fromRepository);
    const Updates::Policy none = Updates::parsePolicy("quarle:\n  Installed: (none)\n  Candidate: (none)\n");
    EXPECT_EQ(none.installed, "");
    EXPECT_EQ(none.candidate, "");
    EXPECT_EQ(Updates::parsePolicy("N: Unable to locate package quarle\n\x01garbage").installed, "");

    using C = Updates::Channel;
    EXPECT_EQ(Updates::sentence(C{"quarle", newer}),
              "Installed as the package \"quarle\": version 0.2 is available from your package manager.");
    EXPECT_TRUE(Updates::sentence(C{"quarle", file}).contains("from a file"));
    Updates::Policy current = newer;
    current.candidate = current.installed;
    EXPECT_TRUE(Updates::sentence(C{"quarle", current}).endsWith("none newer is known yet."));
    EXPECT_TRUE(Updates::sentence(C{"quarle", std::nullopt}).endsWith("arrive with your system's packages."));
    EXPECT_TRUE(Updates::sentence(C{}).startsWith("Built from source"));
    EXPECT_EQ(Updates::versionLine("0.1", ""), "Quarle 0.1");
    EXPECT_EQ(Updates::versionLine("0.1", "0eb50d9a1c"), "Quarle 0.1 (revision 0eb50d9a1c)");
}

TEST(Updates, AsksTheRealDpkgOffTheMainThread) {
    if (QStandardPaths::findExecutable("dpkg").isEmpty()) GTEST_SKIP() << "no dpkg here";
    // This test program belongs to no package; /bin/sh does (dash, though dpkg knows it as /bin/sh only).
    EXPECT_EQ(Updates::ask(QCoreApplication::applicationFilePath()).package, "");

    QObject context;
    std::optional<Updates::Channel> answer;
    Qt::HANDLE answeredOn = nullptr;
    Updates::askInBackground("/usr/bin/sh", &context, [&](const Updates::Channel& c) {
        answer = c;
        answeredOn = QThread::currentThreadId();
    });
    // A context gone before the answer comes gets none.
    bool called = false;
    {
        QObject gone;
        Updates::askInBackground("/bin/sh", &gone, [&](const Updates::Channel&) { called = true; });
    }
    EXPECT_FALSE(answer.has_value());  // the call returned before dpkg answered
    QElapsedTimer waited;
    waited.start();
    while (!answer && waited.elapsed() < 30000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(answer->package, "dash");
    EXPECT_EQ(answeredOn, QThread::currentThreadId());
    waited.restart();
    while (waited.elapsed() < 1000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_FALSE(called);
}

}  // namespace
